#include "registry_file.h"

#include "command.h"
#include "value_compare.h"
#include "value_file.h"

namespace kvtool {
namespace {

std::string whatIsWrong(const KV_COMException &error) {
    switch (error.GetComponentError()) {
    case KV_COMException::SyntaxError:
        return "has a reference without '}', or references that go on for ever or grow without bound";
    case KV_COMException::RegistryNotCreated:
        return "has a Components, Environment or Tracing that is no dictionary";
    default:
        KV_String text;
        return error.ToString(text).Ptr();
    }
}

}  // namespace

RegistryFile::RegistryFile(const std::string &file) {
    try {
        KV_COMManager::ReadRegistry(KV_FileSpecFromNative(file.c_str()), raw, expanded);
    } catch (const KV_COMException &error) {
        throw BadInput(file, whatIsWrong(error));
    } catch (const KV_FileException &error) {
        if (error.GetFileErrorId() == KV_FileException::OpenRdError)
            throw BadInput(file, "can't be opened to be read");
        throw BadInput(file, "is no dictionary in the text form; 'kvtool values check' tells where");
    }
    if (sizeOf(raw).depth > kDeepestTree)
        throw BadInput(file, "is nested deeper than the " + std::to_string(kDeepestTree) +
                                 " levels that the tool takes");
}

}  // namespace kvtool
