// Number text on any bytes. The first ones choose the form, the rest is a double and a text.

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "../tests/runtime/plain_number_text.h"
#include "kvbase/runtime/kv_number_text.h"
#include "runtime/fixed_decimal.h"

namespace {

void require(bool holds, const char *what) {
    if (holds) return;
    std::fprintf(stderr, "number_text: %s\n", what);
    std::abort();
}

bool sameBits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// The fast form against the plain one, in a block that ends where the longest text ends.
void writeEachForm(double value, int precision) {
    const auto text = std::make_unique<char[]>(311);
    for (const char format : {'f', 'e', 'E', 'g', 'G'}) {
        const int length = kv_dtoa(text.get(), value, format, 0, precision);
        require(plain::dtoa(value, format, precision) == text.get(), "kv_dtoa and its plain form");
        require(std::strlen(text.get()) == static_cast<std::size_t>(length), "length of kv_dtoa");
    }
}

void writeFixed6(double value) {
    const auto text = std::make_unique<char[]>(kv::detail::kLongestFixed6);
    char *const end = kv::detail::appendFixed6(text.get(), value);
    char printed[400];
    std::snprintf(printed, sizeof printed, "%.6f", value);
    require(std::string(printed) == std::string(text.get(), end), "appendFixed6 and printf");
}

void readBoth(const std::string &text) {
    const char *end = nullptr;
    std::size_t used = 0;
    const std::string upToZero = text.substr(0, text.find('\0'));
    require(sameBits(kv_strtod(upToZero.c_str(), &end), plain::strtod(upToZero, used)),
            "kv_strtod and its plain form");
    require(end == upToZero.c_str() + used, "end of kv_strtod");

    const std::vector<char> exact(text.begin(), text.end());
    double value = 0;
    double expected = 0;
    const bool good = kv::detail::readDouble(exact.data(), exact.data() + exact.size(), value);
    std::istringstream stream(text);
    stream >> expected;
    require(good == !stream.fail() && sameBits(value, expected), "readDouble and a stream");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size < 9) return 0;
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; ++i)
        bits = bits << 8 | data[1 + i];
    const auto value = std::bit_cast<double>(bits);
    const int precision = 1 + data[0] % 39;
    const std::string text(data + 9, data + size);
    writeEachForm(value, precision);
    writeFixed6(value);
    readBoth(text);

    // What the text says is a value too, of the kind that people write.
    const double written = kv_strtod(text.c_str(), nullptr);
    writeEachForm(written, precision);
    writeFixed6(written);
    return 0;
}
