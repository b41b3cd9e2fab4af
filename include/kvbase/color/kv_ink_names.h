#pragma once

// The names of inks and other device channels, and the way from names, or from measured solids, back to the
// colour space. Free functions without state, for any thread. None of them raises but for the lack of memory.
//
// The canonical ink names are "Cyan", "Magenta", "Yellow", "Black", "Orange", "Green", "Blue", "Red" and
// "Violet"; case counts. "Sti" stands for stimulus, the device values that drive a patch.

#include <cstdint>
#include <string>
#include <vector>

#include "kvbase/base/export.h"
#include "kvbase/base/types.h"
#include "kvbase/color/kv_color_space.h"

/// The name of a channel, counted from 0. The spaces that have names:
///   LAB                    "CIE-L", "CIE-A", "CIE-B"
///   RGB, RGBK              "Red", "Green", "Blue", and "Black" for the K of RGBK
///   GRAY, GRAY_BIZ, _WIZ   "Black", whatever the index
///   CMYK, CMY, CMYK1 to 5  "Cyan", "Magenta", "Yellow", "Black", "PC_5" to "PC_9", for all of them alike
///   CLR1 to CLR16          "COLOR_1" to "COLOR_16", for all of them alike
///   CMYKO and the others   the process inks, then those of the further letters
/// An index without a name gives the empty text, and "UndefinedStiName" when it is above the number of
/// channels (not at it). A space without names gives "UndefineStiName".
KV_EXPORT std::string ColorSpaceStiName(KV_ColorSpace space, std::int32_t index);

/// The names of all channels of RGB, the greys, CMYK, CMY, CLR1 to CLR16 and the spaces of CMYK with named
/// further inks; of CMYK1 to CMYK5 after a classification of their further inks. Empty for any other space.
///
/// space   CMYK1 to CMYK5 become the space of CMYK with these further inks, CMYKO and the like.
/// solids  the measured solids, L*, a*, b* for each channel in their order; read for CMYK1 to CMYK5 only.
///
/// The hues of cyan, magenta and yellow cut the circle into three sectors. From magenta to yellow lie orange
/// and red, of two inks the one nearer to magenta in hue is red; from yellow to cyan lies green; from cyan to
/// magenta lie blue and violet, of two inks the one nearer to cyan is blue. A hue at the end of a sector
/// belongs to it. At equal distance the first in channel order is orange, or violet. The names stand in
/// channel order, which may differ from the order of the letters in the space's name.
///
/// Empty, with space left as it is, when the solids are fewer than three floats a channel, an ink lies in no
/// sector, or no space has the inks that were found, such as two greens. Where the primaries stand in another
/// order than usual the sectors overlap, and an ink counts in each; a single further ink then is orange
/// rather than green, and green rather than blue.
KV_EXPORT std::vector<std::string> ColorSpaceStiNames(KV_ColorSpace &space, const std::vector<float> &solids);

/// The space whose channels the names make up, in any order: GRAY of "Black"; RGB of three names among "Red",
/// "Green", "Blue"; CMYK of four among the process inks; CMYK with further inks of five to nine, of which
/// four are among the process inks and the others exactly the further inks of the space. Whether a name
/// stands twice is not looked at. KV_CS_UNKNOWN when there is no such space.
KV_EXPORT KV_ColorSpace StiNamesColorSpace(const std::vector<KV_WString> &names);

/// Replaces each character of text that occurs in from by the character at the same place in to; that of its
/// first occurrence. False, with text left as it is, when from and to differ in length.
KV_EXPORT bool ReplaceShortNames(std::string &text, const std::string &from, const std::string &to);
KV_EXPORT bool ReplaceShortWNames(KV_WString &text, const KV_WString &from, const KV_WString &to);

/// The sub-models of four inks into which a space falls: channel indexes, the last of each list 3, black. The
/// first is C, M, Y, K, and for each further ink follows one in which orange takes the place of cyan, green
/// of magenta, blue of yellow; red that of yellow beside orange, and violet that of cyan beside blue. CMYKOR
/// alone has orange, red, Y, K in the place of orange, M, Y, K, as its last. For CMYK and the spaces of CMYK
/// with named further inks; any other empties models.
KV_EXPORT void ColorSpaceModelInfo(KV_ColorSpace space, std::vector<std::vector<std::int32_t>> &models);

/// The density filter for an ink, an index into "D_RED D_GREEN D_BLUE D_VIS": 0 for "Cyan" and "Green", 1 for
/// "Magenta", "Blue" and "Violet", 2 for "Yellow", "Orange" and "Red", 3 for "Black", -1 for any other name.
/// An empty name becomes ColorSpaceStiName(space, channel).
KV_EXPORT std::int32_t Ink2Filter(KV_ColorSpace space, std::int32_t channel, std::string &name);
