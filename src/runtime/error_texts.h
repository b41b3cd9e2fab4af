#pragma once

// The texts of the error numbers that exceptions show.

#include <cstddef>
#include <cstdint>

#include "kvbase/runtime/kv_exception.h"

namespace kv::detail {

// The texts of numbers: one row each, and one text for all the numbers without a row.
struct NumberText {
    std::int32_t number;
    const char *text;
};

template <std::size_t Count>
const char *textOf(const NumberText (&rows)[Count], std::int32_t number, const char *otherwise) {
    for (const NumberText &row : rows) {
        if (row.number == number) return row.text;
    }
    return otherwise;
}

constexpr NumberText kFileErrors[] = {
    {KV_FileException::NoError, "NoError"},         {KV_FileException::FileNotFound, "FileNotFound"},
    {KV_FileException::InvalidFile, "InvalidFile"}, {KV_FileException::OpenRdError, "OpenRdError"},
    {KV_FileException::OpenWrError, "OpenWrError"}, {KV_FileException::OpenRdWrError, "OpenRdWrError"},
    {KV_FileException::ReadError, "ReadError"},     {KV_FileException::WriteError, "WriteError"},
    {KV_FileException::SeekError, "SeekError"},     {KV_FileException::TellError, "TellError"},
    {KV_FileException::LockError, "LockError"},     {KV_FileException::Unknown, "Unknown"},
};
constexpr char kFileErrorOther[] = "unknown";

constexpr NumberText kComponentErrors[] = {
    {KV_COMException::InvalidComponent, "Invalid Component"},
    {KV_COMException::InvalidResource, "Invalid resource"},
    {KV_COMException::InvalidComponentId, "Invalid Component ID"},
    {KV_COMException::SyntaxError, "Syntax error in registry"},
    {KV_COMException::NoSuchSection, "Registry section does not exist"},
    {KV_COMException::NoSuchValue, "Registry value does not exist"},
    {KV_COMException::RegistryNotCreated, "Registry could not be created"},
    {KV_COMException::ComponentNotFound, "Unable to find component in list"},
    {KV_COMException::ComponentNotInitialized, "Component could not be initialized"},
    {KV_COMException::ComponentInUse, "Component is still in use"},
    {KV_COMException::ComponentLocked, "Component is still locked"},
};
constexpr char kComponentErrorOther[] = "Unspecified exception cause";

constexpr char kFormatErrorOther[] = "Unspecified format exception cause.";
constexpr NumberText kFormatErrors[] = {
    {KV_ERR_FORMAT_UNSPECIFIED, kFormatErrorOther},
    {KV_ERR_FORMAT_TARGET_FILE, "Invalid target file."},
    {KV_ERR_FORMAT_MEASUREMENT_FILE, "Invalid measurement file."},
    {KV_ERR_FORMAT_FILES_DIFFER, "Target file and measurement file don't match."},
};

constexpr NumberText kInstrumentErrors[] = {
    {KV_ERR_INSTRUMENT_NO_PORT, "Error: did not find a serial port"},
    {KV_ERR_INSTRUMENT_PORT_USE, "Error occured while using the serial port"},
    {KV_ERR_INSTRUMENT_NO_DEVICE_TYPE, "device type is not specified"},
    {KV_ERR_INSTRUMENT_COLOR_SPACE, "cannot convert to this color space"},
    {KV_ERR_INSTRUMENT_NOT_FOUND, " The specified instrument cannot be found or is in use."},
    {KV_ERR_INSTRUMENT_NO_PAGE_DESCRIPTION, " No page description could be found"},
    {KV_ERR_INSTRUMENT_PATCH_NUMBER, " The patch number is out of range."},
    {KV_ERR_INSTRUMENT_TOO_LITTLE_DATA, "could not read enough data"},
    {KV_ERR_INSTRUMENT_UNEXPECTED_DATA, "found unexpected data in the buffer "},
    {KV_ERR_INSTRUMENT_NO_COLOR_VALUE, "could not get the value for this color"},
    {KV_ERR_INSTRUMENT_CALIBRATION_FAILED, " The calibration failed."},
    {KV_ERR_INSTRUMENT_NEEDS_CALIBRATION, " The device needs calibration."},
    {KV_ERR_INSTRUMENT_ID_PATCHES, "Computed value of ID patches is out of range"},
    {KV_ERR_INSTRUMENT_BAD_SETTING, "Bad value was used for this setting."},
    {KV_ERR_INSTRUMENT_TARGET_WIDTH, "The width of the target is too large."},
    {KV_ERR_INSTRUMENT_TARGET_HEIGHT, "The heigth of the target is too great."},
    {KV_ERR_INSTRUMENT_STRIP_COLORS, "Two colors from the strip are too close."},
    {KV_ERR_INSTRUMENT_PAGE_NUMBER, "Page number is higher than 15."},
    {KV_ERR_INSTRUMENT_TABLE_X, "Target does not fit on the table in X direction."},
    {KV_ERR_INSTRUMENT_TABLE_Y, "Target does not fit on the table in Y direction."},
    {KV_ERR_INSTRUMENT_STRIP_MEASUREMENT, "Device will fail to measure the strip."},
    {KV_ERR_INSTRUMENT_LAYOUT, "Could not create a proper layout for the pagedescription"},
    {KV_ERR_INSTRUMENT_WRONG_FILTER, " The calibration failed due to the wrong filter being installed."},
};
constexpr char kInstrumentErrorOther[] = "Unspecified exception cause.";

constexpr NumberText kProfileErrors[] = {
    {KV_ERR_PROFILE_OBJECT_MISSING, "Object is missing."},
    {KV_ERR_PROFILE_TYPE, "Wrong Profile Type."},
    {KV_ERR_PROFILE_COLOR_SPACE, "Color space is not correct."},
    {KV_ERR_PROFILE_TRC, "Trc is not valid."},
    {KV_ERR_PROFILE_TAG_MISSING, "Tag is missing."},
    {KV_ERR_PROFILE_DIMENSIONS, "Wrong dimensions for object."},
    {KV_ERR_PROFILE_TAG_TYPE, "Tag has wrong type signature."},
    {KV_ERR_PROFILE_TAG_SIGNATURE, "Tag has wrong signature."},
    {KV_ERR_PROFILE_NOT_READABLE, "The file could not opened for reading."},
    {KV_ERR_PROFILE_NOT_A_PROFILE, "The file you are trying to use is not a profile."},
};
constexpr char kProfileErrorOther[] = "Unspecified profile exception cause.";

}  // namespace kv::detail
