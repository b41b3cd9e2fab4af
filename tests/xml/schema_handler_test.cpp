#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "events.h"

namespace {

using Limits = std::numeric_limits<std::int32_t>;

struct NumberCase {
    const char *text;
    bool isInteger;
    std::int32_t integer;
    bool isDouble;
    double number;
};
const NumberCase kNumbers[] = {
    {"", false, 0, false, 0},
    {"-", true, 0, true, 0},
    {"-12", true, -12, true, -12},
    {"12.5", false, 0, true, 12.5},
    {"1.2.3", false, 0, true, 1.2},
    {"1e5", false, 0, false, 0},
    {"+3", false, 0, false, 0},
    {"3-", false, 0, false, 0},
    {" 3", false, 0, false, 0},
    {"2147483647", true, Limits::max(), true, 2147483647.0},
    {"2147483648", true, Limits::max(), true, 2147483648.0},
    {"-2147483649", true, Limits::min(), true, -2147483649.0},
};

TEST(ElementAttributes, AreTyped) {
    for (const NumberCase &row : kNumbers) {
        const char *pairs[] = {"n", row.text, nullptr};
        const ExpatXMLAttributeList list(pairs);
        std::int32_t integer = 7;
        double number = 7;
        EXPECT_EQ(KalSAX::ElementAttributes::GetIntegerValue(list, "n", integer), row.isInteger) << row.text;
        EXPECT_EQ(integer, row.integer) << row.text;
        EXPECT_EQ(KalSAX::ElementAttributes::GetDoubleValue(list, "n", number), row.isDouble) << row.text;
        EXPECT_NEAR(number, row.number, 1e-12) << row.text;
    }
    const char *pairs[] = {"t", "true", "u", "TRUE", "e", "", "t", "second", nullptr};
    const ExpatXMLAttributeList list(pairs);
    bool value = false;
    EXPECT_TRUE(KalSAX::ElementAttributes::GetBoolValue(list, "t", value) && value);
    EXPECT_TRUE(KalSAX::ElementAttributes::GetBoolValue(list, "u", value) && !value);
    value = true;
    EXPECT_FALSE(KalSAX::ElementAttributes::GetBoolValue(list, "e", value) || value);
    const char *const choices[] = {"a", "true", nullptr}, *const none[] = {nullptr};
    EXPECT_EQ(KalSAX::ElementAttributes::GetValueChoice(list, "t", choices), 1);
    EXPECT_EQ(KalSAX::ElementAttributes::GetValueChoice(list, "u", choices), -1);
    EXPECT_EQ(KalSAX::ElementAttributes::GetValueChoice(list, "absent", choices), -1);
    EXPECT_EQ(KalSAX::ElementAttributes::GetValueChoice(list, "t", none), -1);
    EXPECT_TRUE(list.GetValue(-1).IsEmpty() && list.GetValue(4).IsEmpty() && list.GetType(9) == "CDATA");
    EXPECT_EQ(ExpatXMLAttributeList(nullptr).GetLength(), 0);
}

// Writes down what it is told, and begins a redirection when it has a target.
class Noting : public KalSAX::ElementHandler {
public:
    explicit Noting(std::string &log, KalSAX::Dispatcher *dispatcher = nullptr, Events *target = nullptr)
        : m_log(log), m_dispatcher(dispatcher), m_target(target) {}
    void Reset() override { m_log += 'r'; }
    void HandleStart(const KalSAX::AttributeList & /*attributes*/) override {
        m_log += 's';
        if (m_target != nullptr) m_dispatcher->StartRedirection("sub", m_target);
    }
    void HandleEnd() override { m_log += 'e' + (m_target != nullptr ? m_target->text : ""); }

private:
    std::string &m_log;
    KalSAX::Dispatcher *m_dispatcher;
    Events *m_target;
};

class Reader : public XMLSchemaHandler {
public:
    void Characters(const KV_String & /*text*/) override {}
};

TEST(Dispatcher, HandsElementsAndSubtreesOn) {
    std::string one, sub, replaced;
    Events subtree;
    Reader reader;
    auto *const former = new Noting(replaced);
    reader.AddElementHandler("one", former);
    reader.AddElementHandler("one", new Noting(one));
    delete former;  // given back
    reader.AddElementHandler("sub", new Noting(sub, &reader.GetElementDispatcher(), &subtree));
    EXPECT_TRUE(parseText(reader, reader, "<x><one/><other/><sub v='1'><one/><sub/><one/></sub><one/></x>"));
    EXPECT_EQ(replaced, "r");
    EXPECT_EQ(one, "rserserser");  // not the one within the subtree, but those behind its first end
    EXPECT_EQ(subtree.text, "<sub 1<one><sub>");               // the first end of that name ends it
    EXPECT_EQ(sub, "rse<sub 1<one><sub>re<sub 1<one><sub>r");  // and the outer end is an end, too
    EXPECT_FALSE(reader.GetElementDispatcher().RedirectionActive());
    auto *const twice = new Noting(replaced);  // destroyed once, though it has two names
    reader.AddElementHandler("left", twice);
    reader.AddElementHandler("right", twice);
}

}  // namespace
