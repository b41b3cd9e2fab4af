#include "kvbase/color/kv_illuminant.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "illuminant_spectra.h"
#include "runtime/trace_line.h"
#include "tables/cie_1931_2deg.h"
#include "tables/cie_1964_10deg.h"
#include "tables/daylight_z.h"

namespace {

using kv::detail::kStandardSamples;

void traceConstruction() { kv::detail::traceLine(kv::detail::kTraceConstruct, "Constructing KV_Spectrum()"); }

/// A white point under each observer.
struct FixedWhite {
    XYZType at2Deg, at10Deg;
};
constexpr FixedWhite kIntegrated = {};

/// The daylights whose white points are fixed.
struct FixedDaylight {
    KV_IlluminantType type;
    float temperature;
    FixedWhite white;
};
constexpr FixedDaylight kFixedDaylights[] = {
    {KV_IT_D50, 5000, {{96.42F, 100, 82.49F}, {96.74F, 100, 81.36F}}},
    {KV_IT_D65, 6500, {{95.04F, 100, 108.8F}, {94.82F, 100, 107.25F}}},
    {KV_IT_D93, 9300, {{95.32F, 100, 141.32F}, {94.3F, 100, 138.56F}}},
};

constexpr float kFromWhitePoint = 0;

/// The standard lights other than daylight. The white point of B under the 10 degree observer is far from
/// what its spectrum gives, 99.20, 100, 84.32: it is fixed nevertheless.
struct StandardLight {
    kv::detail::Spectrum (*spectrum)();
    KV_IlluminantType type;
    float temperature;
    FixedWhite white;
};
constexpr StandardLight kStandardLights[] = {
    {[] { return kv::detail::blackBodySpectrum(2856); }, KV_IT_A, 2856, kIntegrated},
    {kv::detail::illuminantBSpectrum, KV_IT_B, 4874, {{99.07F, 100, 85.22F}, {98.15F, 100, 91.85F}}},
    {kv::detail::illuminantCSpectrum, KV_IT_C, 6774, {{98.04F, 100, 118.1F}, {97.28F, 100, 116.08F}}},
    {kv::detail::equalEnergySpectrum, KV_IT_E, kFromWhitePoint, {{100, 100, 100}, {100, 100, 100}}},
    {kv::detail::f1Spectrum, KV_IT_F1, kFromWhitePoint, kIntegrated},
    {kv::detail::f2Spectrum, KV_IT_F2, kFromWhitePoint, kIntegrated},
    {kv::detail::d50LocalSpectrum, KV_IT_D50_Local, kFromWhitePoint, kIntegrated},
};

const XYZType &under(KV_ObserverType observer, const FixedWhite &white) {
    return observer == KV_Observer10Deg ? white.at10Deg : white.at2Deg;
}

/// The wavelength to which luminance is relative, 555 nm, in the tables.
constexpr int kLuminanceSample = 555 - kv::detail::kFirstNm;

bool isClose(float a, float b) { return std::fabs(a - b) <= 0.5F; }

bool isClose(const XYZType &a, const XYZType &b) {
    return isClose(a.X, b.X) && isClose(a.Y, b.Y) && isClose(a.Z, b.Z);
}

/// What brings the largest sample to 1; 0 for a dark spectrum.
float scaleToOne(const KV_Spectrum &standard) {
    const float largest = std::max(0.0F, *std::max_element(standard.data, standard.data + kStandardSamples));
    return largest > 0 ? 1 / largest : 0;
}

bool haveCloseShapes(const KV_Spectrum &a, const KV_Spectrum &b) {
    const float scaleA = scaleToOne(a);
    const float scaleB = scaleToOne(b);
    for (int i = 0; i < kStandardSamples; ++i) {
        if (std::fabs(a.data[i] * scaleA - b.data[i] * scaleB) > 0.02F) return false;
    }
    return true;
}

/// Whether a light has the temperature of the daylight nearest to its white point.
bool followsWhitePoint(KV_IlluminantType type) {
    switch (type) {
    case KV_IT_E:
    case KV_IT_F1:
    case KV_IT_F2:
    case KV_IT_D50_Local:
    case KV_IT_Custom_Spectral:
    case KV_IT_Custom_XYZ:
        return true;
    default:
        return false;
    }
}

}  // namespace

KV_Illuminant::KV_Illuminant(Blank, KV_ObserverType observer) : m_observer(observer) { selectTables(); }

KV_Illuminant::KV_Illuminant(KV_ObserverType observer) : KV_Illuminant(KV_IT_D50, observer) {}

KV_Illuminant::KV_Illuminant(KV_IlluminantType type, KV_ObserverType observer)
    : KV_Illuminant(Blank(), observer) {
    traceConstruction();
    SetStandardIlluminant(type, KV_ObserverNone);
}

KV_Illuminant::KV_Illuminant(KV_IlluminantType type, float temperature, KV_ObserverType observer)
    : KV_Illuminant(Blank(), observer) {
    traceConstruction();
    if (type == KV_IT_D)
        SetIlluminantD(temperature, KV_ObserverNone);
    else if (type == KV_IT_BlackBody)
        SetIlluminantBlackBody(temperature, KV_ObserverNone);
    else
        SetStandardIlluminant(type, KV_ObserverNone);
}

KV_Illuminant::KV_Illuminant(KV_Spectrum *spectrum, KV_ObserverType observer)
    : KV_Illuminant(Blank(), observer) {
    traceConstruction();
    SetCustomSpectrum(spectrum, KV_ObserverNone);
}

KV_Illuminant::KV_Illuminant(XYZType *xyz, KV_ObserverType observer) : KV_Illuminant(Blank(), observer) {
    traceConstruction();
    SetCustomXYZ(xyz, KV_ObserverNone);
}

KV_Illuminant::KV_Illuminant(const KV_Illuminant &other) : KV_Illuminant(Blank(), other.m_observer) {
    *this = other;
    m_luminance = other.m_luminance;
}

KV_Illuminant &KV_Illuminant::operator=(const KV_Illuminant &other) {
    if (this == &other) return *this;
    KV_String name = other.m_name;
    auto spectrum = other.m_spectrum ? std::make_unique<KV_Spectrum>(*other.m_spectrum) : nullptr;
    auto standard =
        other.m_standardSpectrum ? std::make_unique<KV_Spectrum>(*other.m_standardSpectrum) : nullptr;
    m_type = other.m_type;
    m_illuminance = other.m_illuminance;
    m_temperature = other.m_temperature;
    m_name = std::move(name);
    m_observer = other.m_observer;
    if (spectrum) m_spectrum = std::move(spectrum);
    if (standard) m_standardSpectrum = std::move(standard);
    m_cmfX = other.m_cmfX;
    m_cmfY = other.m_cmfY;
    m_cmfZ = other.m_cmfZ;
    m_whitePoint = other.m_whitePoint;
    return *this;
}

KV_Illuminant::~KV_Illuminant() = default;

void KV_Illuminant::MakeCopyOf(KV_Illuminant *source) {
    if (source != nullptr) *this = *source;
}

bool KV_Illuminant::operator==(KV_Illuminant &other) {
    if (m_type != other.m_type || m_observer != other.m_observer) return false;
    switch (m_type) {
    case KV_IT_D:
    case KV_IT_BlackBody:
        return isClose(m_temperature, other.m_temperature);
    case KV_IT_Custom_XYZ:
        return isClose(m_whitePoint, other.m_whitePoint);
    case KV_IT_Custom_Spectral:
        return isClose(m_whitePoint, other.m_whitePoint) &&
               haveCloseShapes(*m_standardSpectrum, *other.m_standardSpectrum);
    default:
        return m_type != KV_IT_Unknown;
    }
}

void KV_Illuminant::SetStandardIlluminant(KV_IlluminantType type, KV_ObserverType observer) {
    takeObserver(observer);
    if (setTabulated(type)) return;
    switch (type) {
    case KV_IT_D65:
        return SetIlluminantD(6500, KV_ObserverNone);
    case KV_IT_D93:
        return SetIlluminantD(9300, KV_ObserverNone);
    case KV_IT_BlackBody:
        return SetIlluminantBlackBody(5000, KV_ObserverNone);
    default:
        return SetIlluminantD(5000, KV_ObserverNone);
    }
}

bool KV_Illuminant::setTabulated(KV_IlluminantType type) {
    const auto *light = std::find_if(std::begin(kStandardLights), std::end(kStandardLights),
                                     [type](const StandardLight &row) { return row.type == type; });
    if (light == std::end(kStandardLights)) return false;
    takeSpectrum(light->spectrum(), type, ::IlluminantTypeToString(type));
    m_whitePoint = under(m_observer, light->white);
    if (m_whitePoint.Y == 0) Spectrum2XYZ();
    m_temperature = light->temperature;
    if (light->temperature == kFromWhitePoint) XYZ2ColorTemp();
    return true;
}

void KV_Illuminant::SetIlluminantD(float temperature, KV_ObserverType observer) {
    takeObserver(observer);
    const float rounded = std::floor(temperature + 0.5F);
    const auto *fixed =
        std::find_if(std::begin(kFixedDaylights), std::end(kFixedDaylights),
                     [rounded](const FixedDaylight &row) { return row.temperature == rounded; });
    const bool isFixed = fixed != std::end(kFixedDaylights);
    const KV_IlluminantType type = isFixed ? fixed->type : KV_IT_D;
    takeSpectrum(kv::detail::daylightSpectrum(temperature), type, ::IlluminantTypeToString(type));
    m_temperature = isFixed ? fixed->temperature : temperature;
    if (isFixed)
        m_whitePoint = under(m_observer, fixed->white);
    else
        Spectrum2XYZ();
}

void KV_Illuminant::SetIlluminantBlackBody(float temperature, KV_ObserverType observer) {
    takeObserver(observer);
    takeSpectrum(kv::detail::blackBodySpectrum(temperature), KV_IT_BlackBody, "BlackBody");
    m_temperature = temperature;
    Spectrum2XYZ();
}

void KV_Illuminant::SetCustomSpectrum(KV_Spectrum *spectrum, KV_ObserverType observer) {
    takeObserver(observer);
    if (spectrum == nullptr) return SetIlluminantD(5000, KV_ObserverNone);
    takeSpectrum(std::make_unique<KV_Spectrum>(*spectrum), KV_IT_Custom_Spectral, "CustomSpectral");
    Spectrum2XYZ();
    XYZ2ColorTemp();
}

void KV_Illuminant::SetCustomXYZ(XYZType *xyz, KV_ObserverType observer) {
    takeObserver(observer);
    if (xyz == nullptr) return SetIlluminantD(5000, KV_ObserverNone);
    m_name = "CustomXYZ";
    m_type = KV_IT_Custom_XYZ;
    m_spectrum.reset();
    m_standardSpectrum.reset();
    m_whitePoint = *xyz;
    XYZ2ColorTemp();
}

void KV_Illuminant::SetStandardObserver(KV_ObserverType observer) {
    if (observer == m_observer) return;
    m_observer = observer == KV_Observer10Deg ? KV_Observer10Deg : KV_Observer2Deg;
    selectTables();
    if (m_type != KV_IT_Custom_XYZ) Spectrum2XYZ();
    if (followsWhitePoint(m_type)) XYZ2ColorTemp();
}

void KV_Illuminant::SetIlluminantName(char *name) { m_name = name; }

void KV_Illuminant::takeObserver(KV_ObserverType observer) {
    if (observer == KV_ObserverNone) return;
    m_observer = observer;
    selectTables();
}

void KV_Illuminant::selectTables() {
    using namespace kv::detail;
    const bool is10Deg = m_observer == KV_Observer10Deg;
    m_cmfX = is10Deg ? kCie1964X : kCie1931X;
    m_cmfY = is10Deg ? kCie1964Y : kCie1931Y;
    m_cmfZ = is10Deg ? kCie1964Z : kCie1931Z;
}

// All or nothing: what needs memory comes first.
void KV_Illuminant::takeSpectrum(std::unique_ptr<KV_Spectrum> spectrum, KV_IlluminantType type,
                                 const char *name) {
    auto standard = kv::detail::standardSpectrum(*spectrum);
    m_name = name;
    m_type = type;
    m_spectrum = std::move(spectrum);
    m_standardSpectrum = std::move(standard);
}

// The sums are single precision, of products rounded to single precision: as the white points that are kept
// elsewhere were made.
void KV_Illuminant::Spectrum2XYZ() {
    m_whitePoint = {};
    m_luminance = 0;
    if (m_standardSpectrum == nullptr) return;
    float X = 0, Y = 0, Z = 0;     // of the light
    float Sx = 0, Sy = 0, Sz = 0;  // of equal energy
    double luminance = 0;
    for (int i = 0; i < kStandardSamples; ++i) {
        const double s = m_standardSpectrum->data[i];
        const auto y = static_cast<float>(s * m_cmfY[i]);
        X += static_cast<float>(s * m_cmfX[i]);
        Y += y;
        Z += static_cast<float>(s * m_cmfZ[i]);
        luminance += y;
        Sx += static_cast<float>(m_cmfX[i]);
        Sy += static_cast<float>(m_cmfY[i]);
        Sz += static_cast<float>(m_cmfZ[i]);
    }
    X = X * 100 * Sy / (Sx * Y);
    Z = Z * 100 * Sy / (Sz * Y);
    if (!std::isfinite(X) || !std::isfinite(Z)) return;  // a light without a white point
    m_whitePoint = {X, 100, Z};
    m_luminance = luminance * 683 / m_cmfY[kLuminanceSample];
}

void KV_Illuminant::XYZ2ColorTemp() {
    using kv::detail::DaylightZ;
    using kv::detail::kDaylightZ;
    const auto z = m_observer == KV_Observer10Deg ? &DaylightZ::z10 : &DaylightZ::z2;
    const auto *row = std::begin(kDaylightZ);
    // The last row stands for all that lies behind the middle of the last two.
    while (row + 1 != std::end(kDaylightZ) && !(m_whitePoint.Z < (row[0].*z + row[1].*z) / 2))
        ++row;
    m_temperature = row->temperature;
}
