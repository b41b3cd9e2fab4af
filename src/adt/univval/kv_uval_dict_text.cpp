// The text files of dictionaries.

#include <iostream>
#include <locale>
#include <memory>
#include <utility>

#include "dict_access.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/stream/kv_fstream.h"
#include "kvbase/univval/kv_uval_dict.h"
#include "stream/file_streambuf.h"
#include "stream_failure.h"
#include "text_value.h"

namespace {

using Value = std::unique_ptr<KV_UVal>;

/// Gives the stream a locale in which numbers have a decimal point and no thousands separator, whatever the
/// process's locale is. The stream keeps it.
void imbueNumbers(std::ios &stream) {
    class space_out : public std::numpunct<char> {
    protected:
        char do_decimal_point() const override { return '.'; }
        char do_thousands_sep() const override { return '\0'; }
        std::string do_grouping() const override { return {}; }
    };
    stream.imbue(std::locale::classic());
    stream.imbue(std::locale(std::cout.getloc(), new space_out));  // owned by the locale
}

/// Merges a value that was read into a dictionary, which it must be.
void mergeInto(KV_UValDict &target, const Value &value) {
    if (value == nullptr) {
        throw KV_FileException("ReadTextFile failed tmp_dict == NULL", KV_FileException::InvalidFile, 0,
                               KV_HERE);
    }
    KV_UValDict *dict = kv::detail::asDict(value.get());
    if (dict == nullptr) {
        throw KV_FileException("ReadTextFile failed wrong type (not KV_UVAL_DICT)",
                               KV_FileException::InvalidFile, 0, KV_HERE);
    }
    kv::detail::DictAccess::mergeApart(*dict, target);  // MoveTo, of a tree that no other holds
}

Value readStream(std::istream &stream, const KV_String &name) {
    try {
        imbueNumbers(stream);
        return kv::detail::readTextValue(stream, name);
    } catch (...) {
        const KV_String reason = kv::detail::currentReason();
        throw KV_FileException("ReadTextFile failed because stream could not be read: " + reason,
                               KV_FileException::OpenRdError, 0, KV_HERE);
    }
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes it by value
void KV_UValDict::ReadTextFile(KV_FileSpec &file, KV_String name) {
    KV_FStream stream(file);
    if (!stream.Open("r", false)) {
        throw KV_FileException(file.GetFileName(), KV_FileException::OpenRdError, 0, KV_HERE);
    }
    kv::detail::FileStreambuf buffer(stream);
    std::istream in(&buffer);
    mergeInto(*this, kv::detail::readTextValue(in, name));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes it by value
void KV_UValDict::ReadTextFile(std::istream &stream, KV_String name) {
    mergeInto(*this, readStream(stream, name));
}

void KV_UValDict::WriteTextFile(KV_FileSpec &file) {
    KV_FStream stream(file);
    if (!stream.Open("w", false)) {
        throw KV_FileException("WriteTextFile failed because file is NOT open", KV_FileException::OpenWrError,
                               0, KV_HERE);
    }
    kv::detail::FileStreambuf buffer(stream);
    std::ostream out(&buffer);
    out.imbue(std::locale::classic());  // not the global one, whose decimal point may be a comma
    kv::detail::writeTextValue(out, this, 0);
    out.flush();
    const bool closed = stream.Close();
    if (!out || !closed) {
        throw KV_FileException("WriteTextFile failed because file could not be written",
                               KV_FileException::WriteError, 0, KV_HERE);
    }
}

void KV_UValDict::WriteTextFile(std::ostream &stream) {
    try {
        imbueNumbers(stream);
        kv::detail::writeTextValue(stream, this, 0);
    } catch (...) {
        kv::detail::setBad(stream);
        throw KV_FileException("WriteTextFile failed because stream is NOT open",
                               KV_FileException::OpenWrError, 0, KV_HERE);
    }
}
