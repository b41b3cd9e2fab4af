#pragma once

// The exceptions of the system: thrown by value, caught by reference. Making one also writes an error line to
// the tracer "KvBaseTrace" when that tracer is on for errors (bit 0x001), so that a trace shows each failure
// at the place of its origin, caught or not. Copies write nothing. The place of origin comes from KV_HERE
// (kvbase/base/here.h).

#include <cstdint>
#include <iosfwd>

#include "kvbase/base/export.h"
#include "kvbase/base/here.h"
#include "kvbase/text/kv_string.h"

/// The error codes of the whole system.
enum KV_ErrorId : std::int32_t {
    KV_ERR_FILE = 3,            ///< KV_FileException
    KV_ERR_CONVERSION = 4,      ///< KV_ConversionException
    KV_ERR_BINPACK = 5,         ///< KV_BinPackException
    KV_ERR_COM = 6,             ///< KV_COMException
    KV_ERR_ATTRIBUTE = 7,       ///< KV_AttributeException
    KV_ERR_BAD_INPUT = 8,       ///< a bad call or bad input, told in the message
    KV_ERR_NO_CONVERGENCE = 9,  ///< a numeric routine that did not converge

    // KV_FormatException
    KV_ERR_FORMAT_UNSPECIFIED = 0x50000,
    KV_ERR_FORMAT_TARGET_FILE = 0x50001,
    KV_ERR_FORMAT_MEASUREMENT_FILE = 0x50002,
    KV_ERR_FORMAT_FILES_DIFFER = 0x50003,

    // KV_InstrumentException
    KV_ERR_INSTRUMENT_NO_PORT = 0x90002,
    KV_ERR_INSTRUMENT_PORT_USE = 0x90003,
    KV_ERR_INSTRUMENT_NO_DEVICE_TYPE = 0x90004,
    KV_ERR_INSTRUMENT_COLOR_SPACE = 0x90005,
    KV_ERR_INSTRUMENT_NOT_FOUND = 0x90006,
    KV_ERR_INSTRUMENT_NO_PAGE_DESCRIPTION = 0x90007,
    KV_ERR_INSTRUMENT_PATCH_NUMBER = 0x90008,
    KV_ERR_INSTRUMENT_TOO_LITTLE_DATA = 0x90009,
    KV_ERR_INSTRUMENT_UNEXPECTED_DATA = 0x9000A,
    KV_ERR_INSTRUMENT_NO_COLOR_VALUE = 0x9000B,
    KV_ERR_INSTRUMENT_CALIBRATION_FAILED = 0x9000C,
    KV_ERR_INSTRUMENT_NEEDS_CALIBRATION = 0x9000D,
    KV_ERR_INSTRUMENT_ID_PATCHES = 0x9000E,
    KV_ERR_INSTRUMENT_BAD_SETTING = 0x9000F,
    KV_ERR_INSTRUMENT_TARGET_WIDTH = 0x90010,
    KV_ERR_INSTRUMENT_TARGET_HEIGHT = 0x90011,
    KV_ERR_INSTRUMENT_STRIP_COLORS = 0x90012,
    KV_ERR_INSTRUMENT_PAGE_NUMBER = 0x90013,
    KV_ERR_INSTRUMENT_TABLE_X = 0x90014,
    KV_ERR_INSTRUMENT_TABLE_Y = 0x90015,
    KV_ERR_INSTRUMENT_STRIP_MEASUREMENT = 0x90016,
    KV_ERR_INSTRUMENT_LAYOUT = 0x9001F,
    KV_ERR_INSTRUMENT_WRONG_FILTER = 0x90023,

    // KV_ProfileException
    KV_ERR_PROFILE_OBJECT_MISSING = 0xE0000,
    KV_ERR_PROFILE_TYPE = 0xE0001,
    KV_ERR_PROFILE_COLOR_SPACE = 0xE0002,
    KV_ERR_PROFILE_TRC = 0xE0003,
    KV_ERR_PROFILE_TAG_MISSING = 0xE0004,
    KV_ERR_PROFILE_DIMENSIONS = 0xE0005,
    KV_ERR_PROFILE_TAG_TYPE = 0xE0006,
    KV_ERR_PROFILE_TAG_SIGNATURE = 0xE0007,
    KV_ERR_PROFILE_NOT_READABLE = 0xE0008,
    KV_ERR_PROFILE_NOT_A_PROFILE = 0xE0009,
};

/// A failure: a message and a code. Base of all exceptions; not of std::exception.
/// In every constructor, date, file and line are the parts of KV_HERE; a null date or file counts as empty.
class KV_EXPORT KV_Exception {
public:
    /// Keeps message and id. With trace, the error line tells the place of origin too.
    KV_Exception(const KV_String &message, KV_ErrorId id, const char *date, const char *file,
                 std::int32_t line, bool trace);
    /// Keeps message and id. With trace, writes an error line.
    KV_Exception(const KV_String &message, KV_ErrorId id, bool trace);
    KV_Exception(const KV_Exception &) = default;
    KV_Exception(KV_Exception &&) = default;
    KV_Exception &operator=(const KV_Exception &) = default;
    KV_Exception &operator=(KV_Exception &&) = default;

    virtual ~KV_Exception();
    /// Appends the text of the failure to target, here the message, and returns target.
    virtual KV_String &ToString(KV_String &target) const;
    /// Prints what ToString gives.
    virtual void PrintOn(std::ostream &out) const;

    /// The error code.
    KV_ErrorId GetErrorId() const { return m_id; }

protected:
    /// The message as it was given.
    const KV_String &message() const { return m_message; }

private:
    KV_String m_message;
    KV_ErrorId m_id;
};

/// A file could not be found, opened, read, written or understood. Code KV_ERR_FILE.
class KV_EXPORT KV_FileException : public KV_Exception {
public:
    /// What went wrong. ToString gives the names below; a number without a name is "unknown".
    enum KV_File_ErrorID : std::int32_t {
        NoError = 0,
        FileNotFound = 1,
        InvalidFile = 2,
        OpenRdError = 3,
        OpenWrError = 4,
        OpenRdWrError = 5,
        ReadError = 6,
        WriteError = 7,
        SeekError = 8,
        TellError = 9,
        LockError = 10,
        Unknown = 11,
    };

    /// message  detail, mostly the file's name; may be empty.
    /// osError  error number of the operating system, 0 for none.
    /// Writes its error line, always.
    KV_FileException(const KV_String &message, KV_File_ErrorID error, std::int32_t osError, const char *date,
                     const char *file, std::int32_t line);

    /// "File exception: " and the error's name; then, as far as there are such, ";   Detail: " and the
    /// message, ";   OSError: " and the number.
    KV_String &ToString(KV_String &target) const override;

    /// What went wrong with the file.
    KV_File_ErrorID GetFileErrorId() const { return m_fileError; }
    /// The error number of the operating system, 0 for none.
    std::int32_t GetOSError() const { return m_osError; }

private:
    KV_File_ErrorID m_fileError;
    std::int32_t m_osError;
};

/// The conversion of a bitmap format failed. Code KV_ERR_CONVERSION.
class KV_EXPORT KV_ConversionException : public KV_Exception {
public:
    /// With a message of its own; writes an error line.
    KV_ConversionException();
};

/// The packing of binary data failed. Code KV_ERR_BINPACK.
class KV_EXPORT KV_BinPackException : public KV_Exception {
public:
    /// With a message of its own; writes an error line.
    KV_BinPackException();

    /// "Binary Packing Error".
    KV_String &ToString(KV_String &target) const override;
};

/// A failure of the component framework or of its registry. Code KV_ERR_COM.
class KV_EXPORT KV_COMException : public KV_Exception {
public:
    /// The component errors. ToString has a text for each, and one for all other numbers.
    enum KV_COM_ErrorID : unsigned short {
        InvalidComponent = 0,
        InvalidResource = 1,
        InvalidComponentId = 2,
        SyntaxError = 3,
        NoSuchSection = 4,
        NoSuchValue = 5,
        RegistryNotCreated = 6,
        ComponentNotFound = 7,
        ComponentNotInitialized = 8,
        ComponentInUse = 9,
        ComponentLocked = 10,
    };

    /// message  detail, for the error line alone. Writes its error line, always.
    KV_COMException(const KV_String &message, unsigned short error, const char *date, const char *file,
                    std::int32_t line);

    /// "KV_COMException:" and the text of the component error.
    KV_String &ToString(KV_String &target) const override;

    /// The component error, a KV_COM_ErrorID.
    unsigned short GetComponentError() const { return m_error; }

private:
    unsigned short m_error;
};

/// A list of attributes did not hold what was asked of it. Code KV_ERR_ATTRIBUTE.
class KV_EXPORT KV_AttributeException : public KV_Exception {
public:
    /// With a message of its own; writes an error line.
    KV_AttributeException(unsigned short reason, std::uint32_t attribute);

    /// Appends nothing.
    KV_String &ToString(KV_String &target) const override;

    /// Why: 1 for an exhausted list.
    unsigned short GetReason() const { return m_reason; }
    /// The attribute's number, 0 when there is none.
    std::uint32_t GetAttribute() const { return m_attribute; }

private:
    unsigned short m_reason;
    std::uint32_t m_attribute;
};

/// A target or measurement file has the wrong form. Codes KV_ERR_FORMAT_...
class KV_EXPORT KV_FormatException : public KV_Exception {
public:
    /// message  detail, for the error line alone. Writes its error line, always.
    KV_FormatException(const KV_String &message, KV_ErrorId id, const char *date, const char *file,
                       std::int32_t line);

    /// The text of the code.
    KV_String &ToString(KV_String &target) const override;
};

/// A measuring instrument failed. Codes KV_ERR_INSTRUMENT_...
class KV_EXPORT KV_InstrumentException : public KV_Exception {
public:
    /// message  detail, for the error line alone. Writes its error line, always.
    KV_InstrumentException(const KV_String &message, KV_ErrorId id, const char *date, const char *file,
                           std::int32_t line);

    /// The text of the code.
    KV_String &ToString(KV_String &target) const override;
    /// The error code.
    virtual KV_ErrorId GetKV_ErrorID() const;
};

/// A colour profile is damaged or of the wrong kind. Codes KV_ERR_PROFILE_...
class KV_EXPORT KV_ProfileException : public KV_Exception {
public:
    /// message  detail, for the error line alone. Writes its error line, always.
    KV_ProfileException(const KV_String &message, KV_ErrorId id, const char *date, const char *file,
                        std::int32_t line);

    /// The text of the code.
    KV_String &ToString(KV_String &target) const override;
    /// The error code.
    virtual KV_ErrorId GetKV_ErrorID() const;
};
