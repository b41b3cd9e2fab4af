#include <gtest/gtest.h>
#include <kvbase/runtime/kv_exception.h>
#include <kvbase/stream/kv_sstream.h>

#include <functional>
#include <memory>
#include <regex>
#include <streambuf>
#include <vector>

#include "runtime/trace_capture.h"

namespace {

using Built = std::shared_ptr<KV_Exception>;

template <class T>
Built make(const T &exception) {
    return std::make_shared<T>(exception);
}
std::function<Built()> file(const char *message, int error, int osError) {
    const auto id = static_cast<KV_FileException::KV_File_ErrorID>(error);
    return [=] { return make(KV_FileException(message, id, osError, "d", "f", 1)); };
}
std::function<Built()> component(unsigned short error) {
    return [=] { return make(KV_COMException("m", error, "d", "f", 1)); };
}
template <class T>
std::function<Built()> coded(int code, std::int32_t line = 1) {
    return [=] { return make(T("m", static_cast<KV_ErrorId>(code), "d", "f", line)); };
}
const auto format = coded<KV_FormatException>;
const auto instrument = coded<KV_InstrumentException>;
const auto profile = coded<KV_ProfileException>;

struct ExceptionCase {
    const char *name;
    std::function<Built()> build;
    std::int32_t code;
    const char *text;  // of ToString
    const char *line;  // in the trace, behind the tracer's name
};

const ExceptionCase kCases[] = {
    {"plain with place", [] { return make(KV_Exception("a", KV_ERR_BAD_INPUT, "Mon", "src/a", 12, true)); },
     8, "a", "a ErrorId = 8   FILE src/a  DATE Mon  LINE = 12\n"},
    {"plain", [] { return make(KV_Exception("a", KV_ERR_NO_CONVERGENCE, true)); }, 9, "a", "a ErrorId = 9\n"},
    {"null place", [] { return make(KV_Exception("a", KV_ERR_BAD_INPUT, nullptr, nullptr, -1, true)); }, 8,
     "a", "a ErrorId = 8   FILE   DATE   LINE = -1\n"},
    {"untraced", [] { return make(KV_Exception("a", KV_ERR_BAD_INPUT, "d", "f", 1, false)); }, 8, "a",
     nullptr},
    {"untraced short", [] { return make(KV_Exception("a", KV_ERR_BAD_INPUT, false)); }, 8, "a", nullptr},
    {"file, bare", file("", 2, 0), 3, "File exception: InvalidFile",
     " KV_File ErrorId = 2OS ErrorId = 0   FILE f  DATE d  LINE = 1\n"},
    {"file, full", file("abc", 2, 5), 3, "File exception: InvalidFile;   Detail: abc;   OSError: 5",
     "abc KV_File ErrorId = 2OS ErrorId = 5   FILE f  DATE d  LINE = 1\n"},
    {"file, negative", file("", 11, -2), 3, "File exception: Unknown;   OSError: -2",
     " KV_File ErrorId = 11OS ErrorId = -2   FILE f  DATE d  LINE = 1\n"},
    {"conversion", [] { return make(KV_ConversionException()); }, 4, "Bitmap format conversion exception",
     "Bitmap format conversion exception ErrorId = 4\n"},
    {"packing", [] { return make(KV_BinPackException()); }, 5, "Binary Packing Error",
     "!! Untraceable Binary Packing Error because the programmer was lame !! ErrorId = 5\n"},
    {"attribute", [] { return make(KV_AttributeException(1, 4711)); }, 7, "",
     "!! Untraceable Attribute because the programmer was lame !! ErrorId = 7\n"},
    {"component", component(3), 6, "KV_COMException:Syntax error in registry",
     "m ErrorId = 3 (KV_COMException:Syntax error in registry)  FILE f DATE d LINE 1\n"},
    {"format", format(0x5000A, 16), 0x5000A, "Unspecified format exception cause.",
     "m ErrorId = 0x5000A  FILE f  DATE d  LINE 16\n"},
    {"instrument", instrument(0x9001F, 1), 0x9001F,
     "Could not create a proper layout for the pagedescription",
     "m ErrorId = 0x9001F  FILE f  DATE d  LINE 1\n"},
    {"profile", profile(0xE0008, 16), 0xE0008, "The file could not opened for reading.",
     "m ErrorId =  0x E0008 FILE f DATE d LINE 16\n"},
};

// Fails at the first byte.
struct FullBuffer : std::streambuf {};

struct TraceCase {
    const char *name;
    std::uint32_t mask;
    bool hasStream, raises;
};
const TraceCase kTraces[] = {
    {"on", 0x001, true, false},
    {"off", ~0x001u, true, false},
    {"without a stream", 0x001, false, false},
    {"to a stream that raises", 0x001, true, true},
};

TEST(Exceptions, ShowTheirTextAndTraceTheirLineOnce) {
    for (const TraceCase &tracing : kTraces) {
        SCOPED_TRACE(tracing.name);
        FullBuffer full;
        TraceCapture trace(tracing.mask);
        if (!tracing.hasStream) KV_Tracer::SetStreamP("KvBaseTrace", nullptr);
        if (tracing.raises) {
            static_cast<std::ostream &>(trace.stream).rdbuf(&full);
            trace.stream.exceptions(std::ios_base::badbit | std::ios_base::failbit);
        }
        trace.stream << std::hex << std::showbase;  // a caller's flags change no number
        for (const ExceptionCase &c : kCases) {
            SCOPED_TRACE(c.name);
            trace.stream.width(40);             // nor does a width that is left pad the line
            const Built exception = c.build();  // copied once: the copy writes nothing
            const bool isTraced =
                tracing.mask == 0x001 && tracing.hasStream && !tracing.raises && c.line != nullptr;
            EXPECT_EQ(trace.Take(),
                      isTraced ? std::string("*** ERROR *** : module KvBaseTrac : ") + c.line : "");
            EXPECT_EQ(exception->GetErrorId(), c.code);
            KV_String target("before ");
            EXPECT_EQ(&exception->ToString(target), &target);
            EXPECT_STREQ(target.Ptr(), (std::string("before ") + c.text).c_str());
            std::ostringstream printed;
            exception->PrintOn(printed);
            EXPECT_EQ(printed.str(), c.text);
        }
    }
}

TEST(Exceptions, AssignmentTakesEveryFieldAndTracesNothing) {
    KV_FileException fileFailure("a", KV_FileException::ReadError, 1, KV_HERE);
    KV_COMException componentFailure("a", KV_COMException::InvalidComponent, KV_HERE);
    KV_AttributeException attributeFailure(1, 2);
    KV_ProfileException profileFailure("a", KV_ERR_PROFILE_TYPE, KV_HERE);
    const KV_FileException otherFile("b", KV_FileException::SeekError, 5, KV_HERE);
    const KV_COMException otherComponent("b", KV_COMException::ComponentInUse, KV_HERE);
    const KV_AttributeException otherAttribute(3, 4);
    const KV_ProfileException otherProfile("b", KV_ERR_PROFILE_TRC, KV_HERE);
    TraceCapture trace(0x001);
    fileFailure = otherFile;
    componentFailure = otherComponent;
    attributeFailure = otherAttribute;
    profileFailure = otherProfile;
    KV_String text;
    EXPECT_EQ(fileFailure.ToString(text), "File exception: SeekError;   Detail: b;   OSError: 5");
    EXPECT_EQ(componentFailure.GetComponentError(), KV_COMException::ComponentInUse);
    EXPECT_EQ(attributeFailure.GetReason(), 3);
    EXPECT_EQ(attributeFailure.GetAttribute(), 4u);
    EXPECT_EQ(profileFailure.GetKV_ErrorID(), KV_ERR_PROFILE_TRC);
    EXPECT_EQ(trace.Take(), "");
}

// The texts of consecutive numbers, with neighbours that have none.
struct TextRun {
    std::function<Built(int)> build;
    const char *before;
    int first;
    std::vector<const char *> texts;
};
template <class T>
Built buildCoded(int code) {
    return coded<T>(code)();
}
const auto buildFile = [](int error) { return file("", error, 0)(); };
const auto buildComponent = [](int error) { return component(static_cast<unsigned short>(error))(); };
constexpr char kOther[] = "Unspecified exception cause.";
constexpr char kOtherFormat[] = "Unspecified format exception cause.";
constexpr char kOtherProfile[] = "Unspecified profile exception cause.";

const TextRun kTextRuns[] = {
    {buildFile,
     "File exception: ",
     -1,
     {"unknown", "NoError", "FileNotFound", "InvalidFile", "OpenRdError", "OpenWrError", "OpenRdWrError",
      "ReadError", "WriteError", "SeekError", "TellError", "LockError", "Unknown", "unknown"}},
    {buildComponent,
     "KV_COMException:",
     0,
     {"Invalid Component", "Invalid resource", "Invalid Component ID", "Syntax error in registry",
      "Registry section does not exist", "Registry value does not exist", "Registry could not be created",
      "Unable to find component in list", "Component could not be initialized", "Component is still in use",
      "Component is still locked", "Unspecified exception cause"}},
    {buildCoded<KV_FormatException>,
     "",
     0x4FFFF,
     {kOtherFormat, kOtherFormat, "Invalid target file.", "Invalid measurement file.",
      "Target file and measurement file don't match.", kOtherFormat}},
    {buildCoded<KV_InstrumentException>,
     "",
     0x90001,
     {kOther,
      "Error: did not find a serial port",
      "Error occured while using the serial port",
      "device type is not specified",
      "cannot convert to this color space",
      " The specified instrument cannot be found or is in use.",
      " No page description could be found",
      " The patch number is out of range.",
      "could not read enough data",
      "found unexpected data in the buffer ",
      "could not get the value for this color",
      " The calibration failed.",
      " The device needs calibration.",
      "Computed value of ID patches is out of range",
      "Bad value was used for this setting.",
      "The width of the target is too large.",
      "The heigth of the target is too great.",
      "Two colors from the strip are too close.",
      "Page number is higher than 15.",
      "Target does not fit on the table in X direction.",
      "Target does not fit on the table in Y direction.",
      "Device will fail to measure the strip.",
      kOther}},
    {buildCoded<KV_InstrumentException>,
     "",
     0x9001E,
     {kOther, "Could not create a proper layout for the pagedescription", kOther, kOther, kOther,
      " The calibration failed due to the wrong filter being installed.", kOther}},
    {buildCoded<KV_ProfileException>,
     "",
     0xDFFFF,
     {kOtherProfile, "Object is missing.", "Wrong Profile Type.", "Color space is not correct.",
      "Trc is not valid.", "Tag is missing.", "Wrong dimensions for object.", "Tag has wrong type signature.",
      "Tag has wrong signature.", "The file could not opened for reading.",
      "The file you are trying to use is not a profile.", kOtherProfile}},
};

TEST(Exceptions, HaveATextForEachNumber) {
    for (const TextRun &run : kTextRuns) {
        for (int number = run.first; const char *text : run.texts) {
            KV_String target;
            EXPECT_STREQ(run.build(number++)->ToString(target).Ptr(),
                         (std::string(run.before) + text).c_str());
        }
    }
}

// Classes of a user's that give another code.
template <class Base>
struct Renumbered : Base {
    Renumbered() : Base("m", KV_ErrorId{1}, KV_HERE) {}
    KV_ErrorId GetKV_ErrorID() const override {
        return KV_ErrorId{static_cast<int>(Base::GetKV_ErrorID()) + 1};
    }
};
template <class Base>
void expectVirtualCode() {
    const Renumbered<Base> derived;
    const Base &base = derived;
    EXPECT_EQ(base.GetKV_ErrorID(), 2);
}

TEST(Exceptions, CodeOfInstrumentsAndProfilesIsVirtual) {
    expectVirtualCode<KV_InstrumentException>();
    expectVirtualCode<KV_ProfileException>();
}

TEST(Exceptions, OfTheLibraryNameTheirSource) {
    TraceCapture trace(0x001);
    EXPECT_THROW(KV_SStream().Seek(0, static_cast<KV_Stream::SeekStartPos>(7)), KV_FileException);
    const std::regex ownStamp("[A-Z][a-z]{2} [A-Z][a-z]{2} [ 0-9]\\d \\d\\d:\\d\\d:\\d\\d \\d{4}");
    const std::string line = trace.Take(),
                      fixedStamp = KV_SOURCE_STAMP;  // the whole build's, when it has one
    std::smatch found;
    ASSERT_TRUE(std::regex_search(line, found,
                                  std::regex("FILE src/stream/kv_sstream\\.cpp  DATE (.*)  LINE = \\d+\n$")))
        << line;
    EXPECT_TRUE(std::regex_match(found.str(1), ownStamp) || found[1] == fixedStamp) << line;
}

}  // namespace
