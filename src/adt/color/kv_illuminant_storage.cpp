// The stored forms of an illuminant: a dictionary and a text file.

#include <algorithm>
#include <cmath>
#include <istream>
#include <memory>
#include <ostream>
#include <utility>

#include "illuminant_text.h"
#include "kvbase/color/kv_illuminant.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/stream/kv_fstream.h"
#include "kvbase/univval/kv_uval_dict.h"
#include "spectrum_grid.h"
#include "stream/file_streambuf.h"

namespace {

using kv::detail::isStorable;

/// Makes a scalar and sets it.
template <class Number>
void define(KV_UValDict &dictionary, const char *key, KV_UValType type, Number value) {
    dictionary.DefineUVal(key, type, 0, nullptr);
    dictionary.SetValue(key, value, 0);
}

void defineFloats(KV_UValDict &dictionary, const char *key, const float *values, std::int32_t count) {
    auto copy = std::make_unique<float[]>(static_cast<std::size_t>(count));
    std::copy_n(values, count, copy.get());
    dictionary.DefineUVal(key, KV_UVAL_FLOAT, count, copy.release());
}

void defineSpectrum(KV_UValDict &dictionary, std::int32_t start, std::int32_t end, std::int32_t step,
                    std::int32_t count, const float *samples) {
    define(dictionary, "spectrumStart", KV_UVAL_ULONG, start);
    define(dictionary, "spectrumEnd", KV_UVAL_ULONG, end);
    define(dictionary, "spectrumStep", KV_UVAL_ULONG, step);
    define(dictionary, "spectrumNbr", KV_UVAL_ULONG, count);
    defineFloats(dictionary, "spectrumData", samples, count);
}

/// The spectrum of a custom light. Samples that are not there are those of D50 at 1 nm.
std::unique_ptr<KV_Spectrum> spectrumOf(KV_UValDict &dictionary) {
    const auto start = dictionary.GetValue("spectrumStart", std::int32_t{360}, 0);
    const auto end = dictionary.GetValue("spectrumEnd", std::int32_t{830}, 0);
    const auto step = dictionary.GetValue("spectrumStep", std::int32_t{1}, 0);
    const auto count = dictionary.GetValue("spectrumNbr", std::int32_t{471}, 0);
    if (start == 0 && end == 0 && step == 0 && count <= 1) return std::make_unique<KV_Spectrum>();  // none
    const std::int64_t samples = kv::detail::gridSamples(start, end, step);
    if (samples > kv::detail::kMostSamples ||
        !isStorable(start, end, step, static_cast<std::int32_t>(samples)) || count < 0 || count > samples) {
        throw KV_Exception("Illuminant::SetDictionary: The spectrum does not fit its grid.", KV_ERR_BAD_INPUT,
                           KV_HERE, true);
    }
    auto spectrum = std::make_unique<KV_Spectrum>(start, end, step);
    if (KV_UVal *data = dictionary.GetUVal("spectrumData"); data != nullptr) {
        for (std::int32_t i = 0; i < count; ++i)
            spectrum->data[i] = data->GetFloatValue(i);
    } else {
        const KV_Illuminant defaults(KV_IT_D50, KV_Observer2Deg);
        const KV_Spectrum &d50 = *defaults.GetSpectrum();
        std::copy_n(d50.data, std::min(count, d50.count), spectrum->data);
    }
    return spectrum;
}

bool isFinite(const KV_Spectrum &spectrum) {
    return std::all_of(spectrum.data, spectrum.data + spectrum.count,
                       [](float v) { return std::isfinite(v); });
}

/// The last component of a path, up to its last full stop.
KV_String nameOf(const KV_FileSpec &file) {
    KV_String name;
    file.GetBaseFileName(name);
    const int stop = name.ReverseFind('.');
    return stop < 0 ? name : KV_String(name(0, static_cast<std::uint32_t>(stop)));
}

}  // namespace

KV_Illuminant::KV_Illuminant(KV_UValDict *dictionary) : KV_Illuminant(Blank(), KV_Observer2Deg) {
    if (dictionary == nullptr)
        SetIlluminantD(5000, KV_ObserverNone);
    else
        SetDictionary(dictionary);
}

void KV_Illuminant::IlluminantDataToDict(KV_UValDict *dictionary) {
    if (dictionary == nullptr) {
        throw KV_Exception("Illuminant::IlluminantDataToDict: The dictionary is NULL.", KV_ERR_BAD_INPUT,
                           KV_HERE, true);
    }
    define(*dictionary, "observerType", KV_UVAL_LONG, static_cast<std::int32_t>(m_observer));
    define(*dictionary, "illuminantType", KV_UVAL_LONG, static_cast<std::int32_t>(m_type));
    define(*dictionary, "ccTemperature", KV_UVAL_FLOAT, m_temperature);
    define(*dictionary, "illuminance", KV_UVAL_FLOAT, m_illuminance);
    const float white[] = {m_whitePoint.X, m_whitePoint.Y, m_whitePoint.Z};
    defineFloats(*dictionary, "xyzIlluminant", white, 3);
    if (const KV_Spectrum *s = m_spectrum.get(); s != nullptr && s->data != nullptr && s->count > 0) {
        defineSpectrum(*dictionary, s->start, s->end, s->step, s->count, s->data);
    } else {
        const float dark = 0;
        defineSpectrum(*dictionary, 0, 0, 0, 1, &dark);
    }
    dictionary->RemoveUVal("illuminantName");
    if (!m_name.IsEmpty()) {
        dictionary->DefineUVal("illuminantName", KV_UVAL_STRING, 0, nullptr);
        dictionary->SetValue("illuminantName", m_name, 0);
    }
}

void KV_Illuminant::SetDictionary(KV_UValDict *dictionary) {
    if (dictionary == nullptr) return;
    const auto type =
        static_cast<KV_IlluminantType>(dictionary->GetValue("illuminantType", std::int32_t{KV_IT_D50}, 0));
    std::unique_ptr<KV_Spectrum> spectrum;
    if (type == KV_IT_Custom_Spectral) spectrum = spectrumOf(*dictionary);
    m_illuminance = 500;
    m_observer =
        static_cast<KV_ObserverType>(dictionary->GetValue("observerType", std::int32_t{KV_Observer2Deg}, 0));
    selectTables();
    const float temperature = dictionary->GetValue("ccTemperature", 5000.0F, 0);
    const KV_String name = dictionary->GetValue("illuminantName", KV_String("unknown"), 0);
    switch (type) {
    case KV_IT_A:
        return SetIlluminantBlackBody(2856, KV_ObserverNone);
    case KV_IT_D:
        return SetIlluminantD(temperature, KV_ObserverNone);
    case KV_IT_BlackBody:
        return SetIlluminantBlackBody(temperature, KV_ObserverNone);
    case KV_IT_Custom_Spectral:
        takeSpectrum(std::move(spectrum), type, name);
        Spectrum2XYZ();
        return XYZ2ColorTemp();
    case KV_IT_Custom_XYZ:
        m_name = name;
        m_type = type;
        m_whitePoint = {dictionary->GetValue("xyzIlluminant", 96.42F, 0),
                        dictionary->GetValue("xyzIlluminant", 100.0F, 1),
                        dictionary->GetValue("xyzIlluminant", 82.49F, 2)};
        return XYZ2ColorTemp();
    default:
        return SetStandardIlluminant(type, KV_ObserverNone);
    }
}

void KV_Illuminant::Read(const KV_FileSpec &file) {
    KV_FStream stream(file);
    if (!stream.Open("r", false)) {
        throw KV_FileException("Read failed because file is NOT open", KV_FileException::OpenRdError, 0,
                               KV_HERE);
    }
    try {
        kv::detail::FileStreambuf buffer(stream);
        std::istream in(&buffer);
        KV_Spectrum spectrum = kv::detail::readSpectrumText(in);
        KV_String name = nameOf(file);
        SetCustomSpectrum(&spectrum, KV_ObserverNone);
        m_name = std::move(name);
    } catch (...) {  // the lack of memory, too
        stream.Close();
        throw KV_FileException("Read failed because file is NOT valid", KV_FileException::InvalidFile, 0,
                               KV_HERE);
    }
}

void KV_Illuminant::Write(const KV_FileSpec &file) {
    const KV_Spectrum *s = m_spectrum.get();
    const bool canBeRead = s != nullptr && s->data != nullptr && std::isfinite(m_temperature) &&
                           isStorable(s->start, s->end, s->step, s->count) && isFinite(*s);
    if (!canBeRead) {
        throw KV_FileException("Write failed because the illuminant has no spectrum that a file can hold",
                               KV_FileException::WriteError, 0, KV_HERE);
    }
    KV_FStream stream(file);
    if (!stream.Open("w", false)) {
        throw KV_FileException("Write failed because file is NOT open", KV_FileException::OpenWrError, 0,
                               KV_HERE);
    }
    kv::detail::FileStreambuf buffer(stream);
    std::ostream out(&buffer);
    kv::detail::writeSpectrumText(out, m_temperature, *s);
    if (!out.flush()) {
        throw KV_FileException("Write failed because file could not be written", KV_FileException::WriteError,
                               0, KV_HERE);
    }
    stream.Close();
}
