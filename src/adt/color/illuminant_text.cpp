#include "illuminant_text.h"

#include <iomanip>
#include <istream>
#include <locale>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kv::detail {

namespace {

constexpr std::string_view kMagic = "CMS_ILLUMINANT_CUSTOM";

/// The next word, empty at the end of the text. None is longer than the first of the form.
std::string nextWord(std::istream &stream) {
    std::string word;
    stream >> std::setw(static_cast<int>(kMagic.size()) + 1) >> word;
    if (word.size() > kMagic.size()) throw std::runtime_error("a word is too long");
    return word;
}

/// The next number, 0 where there is none. One that can't be read stops the stream, so 0s follow.
template <class Number>
Number nextNumber(std::istream &stream) {
    Number number = 0;
    stream >> number;
    return stream ? number : 0;
}

}  // namespace

KV_Spectrum readSpectrumText(std::istream &stream) {
    stream.imbue(std::locale::classic());
    if (nextWord(stream) != kMagic) throw std::runtime_error("not an illuminant");
    nextNumber<float>(stream);  // the temperature, which the spectrum tells
    KV_Spectrum spectrum;
    spectrum.start = nextNumber<std::int32_t>(stream);
    spectrum.end = nextNumber<std::int32_t>(stream);
    spectrum.step = nextNumber<std::int32_t>(stream);
    const auto count = nextNumber<std::int32_t>(stream);
    if (!isStorable(spectrum.start, spectrum.end, spectrum.step, count))
        throw std::runtime_error("not a grid");
    nextWord(stream);
    std::vector<float> samples(static_cast<std::size_t>(count));
    for (float &sample : samples)
        sample = nextNumber<float>(stream);
    nextWord(stream);
    spectrum.SetSpectrum(spectrum.start, spectrum.end, spectrum.step, count, samples);
    return spectrum;
}

void writeSpectrumText(std::ostream &stream, float temperature, const KV_Spectrum &spectrum) {
    stream.imbue(std::locale::classic());
    stream << kMagic << '\n'
           << temperature << '\n'
           << spectrum.start << '\n'
           << spectrum.end << '\n'
           << spectrum.step << '\n'
           << spectrum.count << "\nBEGIN_DATA\n";
    for (std::int32_t i = 0; i < spectrum.count; ++i)
        stream << spectrum.data[i] << '\n';
    stream << "END_DATA\n";
}

}  // namespace kv::detail
