#pragma once

// Sources of light: the CIE illuminants, daylight and black bodies of any temperature, lights of this
// system's own, and custom lights by spectrum or by white point.
//
// Wavelengths are in nm, temperatures in kelvin. A white point has Y = 100. All that is computed here is
// computed from spectra on the grid 360 to 830 nm by 1, with the colour-matching functions of the CIE 1931 (2
// degrees) or the CIE 1964 (10 degrees) standard observer.

#include <cstdint>
#include <memory>

#include "kvbase/base/export.h"
#include "kvbase/color/kv_spectrum.h"
#include "kvbase/text/kv_string.h"

class KV_FileSpec;
class KV_UValDict;

/// Tristimulus values; Y of a white is 100.
struct XYZType {
    float X;
    float Y;
    float Z;
};

/// The kind of a light. The numbers stand in files. KV_IT_F3 to KV_IT_F11 have a name, but no data: wherever
/// a standard illuminant is built, they give D50.
enum KV_IlluminantType : std::int32_t {
    KV_IT_A = 0,
    KV_IT_B = 1,
    KV_IT_C = 2,
    KV_IT_D = 3,  ///< daylight of another temperature than those below
    KV_IT_D50 = 4,
    KV_IT_D65 = 5,
    KV_IT_D93 = 6,
    KV_IT_E = 7,  ///< equal energy
    KV_IT_BlackBody = 8,
    KV_IT_F1 = 9,   ///< this system's own, not the CIE's F1
    KV_IT_F2 = 10,  ///< this system's own, not the CIE's F2
    KV_IT_F3 = 11,
    KV_IT_F4 = 12,
    KV_IT_F5 = 13,
    KV_IT_F6 = 14,
    KV_IT_F7 = 15,
    KV_IT_F8 = 16,
    KV_IT_F9 = 17,
    KV_IT_F10 = 18,
    KV_IT_F11 = 19,
    KV_IT_D50_Local = 20,
    KV_IT_Custom_Spectral = 21,
    KV_IT_Custom_XYZ = 22,
    KV_IT_Unknown = 23
};

/// A standard observer. As the observer of an illuminant any number but 2 selects the 2 degree tables.
enum KV_ObserverType : std::int32_t {
    KV_ObserverNone = 0,  ///< in a setter: keep the present one
    KV_Observer2Deg = 1,  ///< CIE 1931
    KV_Observer10Deg = 2  ///< CIE 1964
};

/// The text of a kind, the enumerator without KV_IT_; "Unknown" for any other number. A constant string.
KV_EXPORT const char *IlluminantTypeToString(KV_IlluminantType type);
/// The kind of exactly this text, in its case; KV_IT_Unknown for any other, and for null.
KV_EXPORT KV_IlluminantType StringToIlluminantType(char *name);

/// A light: a kind, an observer, a spectrum where there is one, its white point, a correlated colour
/// temperature and a name. Owns its spectra. Objects have no lock, one thread at a time; the tables behind
/// them are constant, for any number of threads. Nothing raises but the lack of memory and the operations on
/// dictionaries and files. The constructors, but for the copy and that from a dictionary, write a line to the
/// trace when the construction of objects is traced.
///
/// Every setter first takes its observer, unless that is KV_ObserverNone, and the constructors take theirs as
/// it is.
///
/// A white point that is integrated takes each tristimulus value relative to the sum of its own
/// colour-matching function, so that equal energy is 100, 100, 100 under both observers. A light that has no
/// such white point, because it is dark from 360 to 830 nm or its samples have no finite sum, gets 0, 0, 0.
///
/// Source of formulas and tables: CIE 15 and CIE 018; see the tables and NOTICE.
class KV_EXPORT KV_Illuminant {
public:
    /// D50 under the observer.
    KV_Illuminant(KV_ObserverType observer = KV_Observer2Deg);
    /// As SetStandardIlluminant.
    KV_Illuminant(KV_IlluminantType type, KV_ObserverType observer);
    /// As SetStandardIlluminant, but KV_IT_D as SetIlluminantD and KV_IT_BlackBody as SetIlluminantBlackBody
    /// of the temperature. Any number outside 0 to 20 gives D50.
    KV_Illuminant(KV_IlluminantType type, float temperature, KV_ObserverType observer);
    /// As SetCustomSpectrum.
    KV_Illuminant(KV_Spectrum *spectrum, KV_ObserverType observer);
    /// As SetCustomXYZ.
    KV_Illuminant(XYZType *xyz, KV_ObserverType observer);
    /// As SetDictionary; null gives D50 under the 2 degree observer.
    KV_Illuminant(KV_UValDict *dictionary);
    /// A full copy.
    KV_Illuminant(const KV_Illuminant &other);
    /// As MakeCopyOf.
    KV_Illuminant &operator=(const KV_Illuminant &other);
    ~KV_Illuminant();

    /// Takes all of source but its luminance. Of the two spectra it takes copies of those that source has;
    /// one that source lacks stays here as it was. Null does nothing.
    void MakeCopyOf(KV_Illuminant *source);

    /// Whether two lights are the same for practical purposes: the same kind and observer and, for KV_IT_D
    /// and KV_IT_BlackBody, temperatures at most 0.5 apart; for custom lights each of X, Y and Z at most 0.5
    /// apart; for KV_IT_Custom_Spectral also the spectra, each relative to its own maximum over 360 to 830
    /// nm, at most 0.02 apart at any nm. KV_IT_Unknown is unequal to everything, itself too.
    bool operator==(KV_Illuminant &other);

    /// Builds the standard illuminant of a kind: white point, temperature and name are fixed for B and C, and
    /// for D50, D65 and D93 (see SetIlluminantD); E has 100, 100, 100; A is the black body at 2856 K and
    /// KV_IT_BlackBody that at 5000 K, and these and F1, F2 and D50_Local have integrated white points. The
    /// temperature of E, F1, F2 and D50_Local is that of the nearest daylight. Any other number, KV_IT_D and
    /// KV_IT_F3 to KV_IT_F11 give D50. The fixed white point of B under the 10 degree observer, 98.15, 100,
    /// 91.85, is far from what its spectrum integrates to, 99.20, 100, 84.32.
    void SetStandardIlluminant(KV_IlluminantType type, KV_ObserverType observer);
    /// Daylight of a temperature: the CIE daylight series, whose spectrum is that of the temperature limited
    /// to 4000 to 25000. One that rounds to 5000, 6500 or 9300 is D50, D65 or D93, with a fixed white point
    /// and exactly that temperature; any other is KV_IT_D, with an integrated white point and its temperature
    /// as given.
    void SetIlluminantD(float temperature, KV_ObserverType observer);
    /// The black body of a temperature, by Planck's law.
    void SetIlluminantBlackBody(float temperature, KV_ObserverType observer);
    /// A custom light by its spectrum, which is copied, with an integrated white point, the temperature of
    /// the nearest daylight and the name "CustomSpectral". The spectrum may be this light's own. Null gives
    /// D50.
    void SetCustomSpectrum(KV_Spectrum *spectrum, KV_ObserverType observer);
    /// A custom light by its white point, without a spectrum, with the temperature of the nearest daylight
    /// and the name "CustomXYZ". Null gives D50.
    void SetCustomXYZ(XYZType *xyz, KV_ObserverType observer);

    /// Changes the observer, to KV_Observer10Deg or, for any other number than 2, to KV_Observer2Deg; the
    /// present one changes nothing. The white point is then integrated for every kind, also those whose white
    /// point was fixed. A KV_IT_Custom_XYZ keeps its white point, which no spectrum could give again. The
    /// temperature follows the new white point for E, F1, F2, D50_Local and custom lights, by the new
    /// observer's table.
    void SetStandardObserver(KV_ObserverType observer);
    /// The name. Null is the empty one.
    void SetIlluminantName(char *name);

    KV_IlluminantType GetIlluminantType() const { return m_type; }
    /// Kelvin. Where it follows from the white point, one of 13 temperatures from 4800 to 12000.
    float GetColorTemperature() const { return m_temperature; }
    /// In this object's own buffer; valid until the light changes.
    const char *GetIlluminantName() const { return m_name.Ptr(); }
    /// 683 times the sum of the spectrum, at each nm, times the y function relative to its value at 555 nm:
    /// what the last integration of a white point on this object left, 0 before.
    double GetLuminance() const { return m_luminance; }
    /// The spectrum on its own grid, null when there is none. It stays this light's, until it changes.
    KV_Spectrum *GetSpectrum() const { return m_spectrum.get(); }
    /// The spectrum on 360 to 830 nm by 1, 0 outside its own range; else as GetSpectrum.
    KV_Spectrum *GetStandardSpectrum() const { return m_standardSpectrum.get(); }
    KV_ObserverType GetStandardObserver() const { return m_observer; }
    /// The white point.
    XYZType GetXYZ() const { return m_whitePoint; }

    /// As the free function.
    KV_String IlluminantTypeToString(KV_IlluminantType type) const;
    /// The kind that a name means. A text of a kind, in its case, gives that kind and leaves name alone. Any
    /// other name is brought to upper case; when it then holds "D50", "D_50" or "D 50" it means D50_Local if
    /// it also holds "LOCAL", else D50; when it holds "D65" or "D93", in the same three forms, it means that;
    /// else KV_IT_Unknown.
    KV_IlluminantType StringToIlluminantType(KV_String &name) const;

    /// Writes the light into a dictionary, in place of what stood under these keys: "observerType",
    /// "illuminantType" (longs), "ccTemperature", "illuminance" (floats), "xyzIlluminant" (3 floats),
    /// "spectrumStart", "spectrumEnd", "spectrumStep", "spectrumNbr" (unsigned longs), "spectrumData" (floats
    /// on the spectrum's own grid) and "illuminantName" (a string, absent for an empty name). Without a
    /// spectrum the grid is 0, 0, 0, with one sample of 0. Throws KV_Exception (KV_ERR_BAD_INPUT) when
    /// dictionary is null.
    void IlluminantDataToDict(KV_UValDict *dictionary);
    /// Rebuilds the light from a dictionary. What is missing has the value of D50 under the 2 degree
    /// observer; an "illuminance" is ignored. Standard kinds are built anew, whatever else stands there: A as
    /// the KV_IT_BlackBody of 2856 K. Daylight and black bodies take "ccTemperature". A custom light takes
    /// its name, "unknown" when there is none; one by white point leaves the spectra as they were; one by
    /// spectrum takes its samples for its own grid, with those of D50 at 1 nm as defaults. Null does nothing.
    /// Throws KV_Exception (KV_ERR_BAD_INPUT) when the grid of a custom spectrum has a step below 1, ends
    /// before it starts or has more than 1,000,000 samples, or when "spectrumNbr" is more than the grid has;
    /// a spectrum without samples as IlluminantDataToDict writes it is accepted. The light is unchanged then.
    void SetDictionary(KV_UValDict *dictionary);

    /// Reads a text file, as Write makes it, as a custom light by spectrum under the present observer. The
    /// name is the file's, without folder and extension; the temperature follows from the white point,
    /// whatever the file says. Items are separated by white space of any kind, the words before and behind
    /// the samples are not looked at, and what follows a number that can't be read is 0.
    /// Throws KV_FileException: OpenRdError, "Read failed because file is NOT open"; InvalidFile, "Read
    /// failed because file is NOT valid", when the first word isn't "CMS_ILLUMINANT_CUSTOM", a word is longer
    /// than that, the step is below 1, the grid ends before it starts, or there are no samples or more than
    /// 1,000,000. The light is unchanged then.
    void Read(const KV_FileSpec &file);
    /// Writes temperature and spectrum as a text file, one item a line, floats with 6 digits. Lines end in
    /// LF. Throws KV_FileException: OpenWrError, "Write failed because file is NOT open"; WriteError when the
    /// file can't be written, and when the light has no spectrum that Read would take, such as a
    /// KV_IT_Custom_XYZ: the file is then neither made nor changed. A failure that only closing shows is not
    /// reported.
    void Write(const KV_FileSpec &file);

private:
    struct Blank {};
    KV_Illuminant(Blank, KV_ObserverType observer);

    void takeObserver(KV_ObserverType observer);
    void selectTables();
    void takeSpectrum(std::unique_ptr<KV_Spectrum> spectrum, KV_IlluminantType type, const char *name);
    bool setTabulated(KV_IlluminantType type);
    void Spectrum2XYZ();
    void XYZ2ColorTemp();

    KV_IlluminantType m_type = KV_IT_Unknown;
    float m_illuminance = 500;
    float m_temperature = 0;
    KV_String m_name;
    KV_ObserverType m_observer;
    std::unique_ptr<KV_Spectrum> m_spectrum;
    std::unique_ptr<KV_Spectrum> m_standardSpectrum;  // 360 to 830 nm by 1; there is one where m_spectrum is
    const double *m_cmfX = nullptr;                   // the observer's tables on that grid
    const double *m_cmfY = nullptr;
    const double *m_cmfZ = nullptr;
    XYZType m_whitePoint = {96.42F, 100, 82.49F};
    double m_luminance = 0;
};
