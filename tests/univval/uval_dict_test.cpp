#include "kvbase/univval/kv_uval_dict.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <utility>

#include "filled_dict.h"
#include "kvbase/univval/kv_uval_leaf.h"

namespace {

TEST(UValDict, EmptyOneGivesDefaults) {
    KV_UValDict dict(16384);
    for (const char *path : {"", "a", "a:b", ":"}) {
        EXPECT_EQ(dict.GetUVal(path), nullptr);
        EXPECT_EQ(dict.GetUValType(path), KV_UVAL_NONE);
        EXPECT_EQ(dict.GetUValDimension(path), -1);
        EXPECT_EQ(dict.GetValue(path, 4000000000UL, 0), 4000000000u);
        EXPECT_STREQ(dict.GetValue(path, "x", 0), "x");
        EXPECT_EQ(dict.GetValue(path, KV_UTFString("u"), 0), "u");
        dict.SetValue(path, 7L, 0);
        dict.RemoveUVal(path);
        EXPECT_EQ(dict.GetSize(), 0);
    }
    EXPECT_EQ(dict.KVPairAt("a"), KV_UValDict::Pair("", nullptr));
}

struct PathCase {
    const char *path, *tree;  // the tree after a Long 9 was defined at path; null when it has no place
};
const PathCase kDefines[] = {
    {"x:y:z", "a:b=1 e={} n=null x:y:z=9"},
    {"a:b:", "a:b=9 e={} n=null"},
    {"a", "a=9 e={} n=null"},
    {"a:b:c", nullptr},
    {"", nullptr},
    {"n", "a:b=1 e={} n=9"},
    {"n:m", "a:b=1 e={} n:m=9"},
    {":", "=9 a:b=1 e={} n=null"},
    {"e::", "a:b=1 e:=9 n=null"},
};

TEST(UValDict, DefinesWhereThereIsAPlace) {
    for (const PathCase &c : kDefines) {
        SCOPED_TRACE(c.path);
        Filled dict("a:b=1 e={} n=null");
        KV_UVal *value = dict.DefineUVal(c.path, KV_UVAL_LONG, 1, new std::int32_t[1]{9});
        EXPECT_EQ(flat(dict), c.tree != nullptr ? c.tree : "a:b=1 e={} n=null");
        EXPECT_EQ(value, c.tree != nullptr ? dict.GetUVal(c.path) : nullptr);
    }
    Filled dict("a:b=1");
    EXPECT_EQ(dict.DefineUValDict("a:b"), nullptr);
    EXPECT_EQ(dict.DefineUValDict("a"), dict.GetUVal("a"));
    EXPECT_EQ(dict.DefineUVal("a", KV_UVAL_DICT, 0, nullptr), dict.GetUVal("a"));
    EXPECT_EQ(dict.DefineUVal("c", KV_UVAL_NONE, 0, nullptr), nullptr);
    EXPECT_EQ(dict.DefineUVal("c", static_cast<KV_UValType>(13), 0, nullptr), nullptr);
    EXPECT_EQ(dict.SetUVal("d", &dict), nullptr);
    EXPECT_EQ(dictAt(dict, "a")->SetUVal("d", &dict), nullptr);
    EXPECT_EQ(dict.SetUVal("a:x", dict.GetUVal("a")), nullptr);
    EXPECT_EQ(dict.SetUVal("a:x:y", dict.GetUVal("a")), nullptr);
    KV_UVal *same = dict.GetUVal("a:b");
    EXPECT_EQ(dict.SetUVal("a:b", same), same);
    EXPECT_EQ(flat(dict), "a:b=1");
}

TEST(UValDict, ReadingThroughALeafMeansTheLeaf) {
    Filled dict("a=1 b:c=2 n=null");
    EXPECT_EQ(dict.GetUVal("a:b:c"), dict.GetUVal("a"));
    dict.SetValue("a:b", 5L, 0);
    EXPECT_EQ(dict.GetValue("a:x", 0L, 0), 5);
    EXPECT_EQ(dict.GetUVal("n:x"), nullptr);
    EXPECT_EQ(dict.KVPairAt("b"), KV_UValDict::Pair("b", dict.GetUVal("b")));
    EXPECT_EQ(dict.KVPairAt("c"), KV_UValDict::Pair("", nullptr));
    for (const char *path : {"a:b", "b:c:d", "n:x", "b:x", ""})
        dict.RemoveUVal(path);
    KV_UValDict target(0);
    EXPECT_EQ(dict.CopyUValTo("a:b", &target), nullptr);
    EXPECT_EQ(dict.MoveUValTo("a:b", &target), nullptr);
    EXPECT_EQ(flat(dict) + flat(target), "a=5 b:c=2 n=null");
    dict.RemoveUVal("b:c");
    dict.RemoveUVal("n");
    EXPECT_EQ(flat(dict), "a=5 b={}");
}

TEST(UValDict, NumbersGoInAndOut) {
    KV_UValDict dict(0);
    dict.DefineUVal("v", KV_UVAL_DOUBLE, 2, nullptr);
    const auto check = [&dict](auto number) {
        dict.SetValue("v", number, 1);
        EXPECT_EQ(dict.GetValue("v", decltype(number)(), 1), number);
        EXPECT_EQ(dict.GetValue("v", 0.0, 1), static_cast<double>(number));
        EXPECT_EQ(dict.GetValue("w", number, 1), number);
    };
    check(static_cast<char>(100));
    check(static_cast<unsigned char>(200));
    check(static_cast<short>(-300));
    check(static_cast<unsigned short>(65000));
    check(0.5f);
}

TEST(UValDict, TextGoesToTheStringFamilyAlone) {
    KV_UValDict dict(0);
    dict.DefineUVal("s", KV_UVAL_STRING, 0, nullptr);
    dict.DefineUVal("u", KV_UVAL_UTFSTRING, 2, nullptr);
    dict.DefineUVal("l", KV_UVAL_LONG, 0, nullptr);
    dict.DefineUVal("p", KV_UVAL_PTR, 0, nullptr);
    for (const char *path : {"s", "u", "l", "p"}) {
        dict.SetValue(path, "caf\xE9", 1);
        dict.SetValue(path, KV_String("a\0b", 3), 0);
        dict.SetValue(path, static_cast<void *>(&dict), 0);
    }
    EXPECT_STREQ(dict.GetValue("u", "x", 1), "caf#");
    EXPECT_EQ(dict.GetValue("u", KV_String(), 0), KV_String("a\0b", 3));
    EXPECT_EQ(dict.GetValue("s", KV_String(), 1), KV_String("a\0b", 3)) << "index 1 of a scalar is index 0";
    EXPECT_EQ(dict.GetValue("s", 5L, 0), 0);
    EXPECT_EQ(dict.GetValue("p", static_cast<void *>(nullptr), 0), &dict);
    EXPECT_EQ(dict.GetValue("s", static_cast<void *>(nullptr), 0), nullptr);
    for (const char *path : {"l", "p"}) {
        EXPECT_STREQ(dict.GetValue(path, "none", 0), "none");
        EXPECT_EQ(dict.GetValue(path, KV_String("none"), 0), "none");
        EXPECT_EQ(dict.GetValue(path, KV_UTFString("none"), 0), "none");
    }
    for (const char *path : {"s", "u"}) {
        dict.SetValue(path, KV_String("\xE9"), 0);
        EXPECT_EQ(dict.GetValue(path, KV_String(), 0), "\xE9") << path;
        EXPECT_EQ(dict.GetValue(path, KV_UTFString(), 0), "#") << path;
        dict.SetValue(path, KV_UTFString("\xC3\xA9"), 0);
        EXPECT_EQ(dict.GetValue(path, KV_UTFString(), 0), "\xC3\xA9") << path;
    }
}

TEST(UValDict, OrdersKeysAsUnsignedBytesAndPrints) {
    Filled dict("b=1 \xE9=2 a:c=3 a=3 n=null ab:x:y=4 ab:z=5");
    std::ostringstream stream;
    stream << dict;
    EXPECT_EQ(stream.str(),
              "    |- a => (Long)3\n"
              "    |- ab\n"
              "    |    |- x\n"
              "    |    |    |- y => (Long)4\n"
              "    |    |- z => (Long)5\n"
              "    |- b => (Long)1\n"
              "    |- n<NULL>\n"
              "    |- \xE9 => (Long)2\n");
    std::ostringstream prefixed;
    Filled("k={}").PrintDict(prefixed, "> ");
    EXPECT_EQ(prefixed.str(), ">     |- k\n");
}

KV_UValDict *randomTree(std::mt19937 &random, int depth) {
    auto *tree = new KV_UValDict(0);
    for (const char *key : {"", "a", "b", "c:d"}) {
        const auto kind = random() % 8;
        if (kind == 7) continue;
        KV_UVal *&value = (*tree->GetValuePtr())[key] = nullptr;
        if (kind < 3 && depth > 0) value = randomTree(random, depth - 1);
        if (kind > 3)
            (value = new KV_UValLong(0, nullptr))->SetLongValue(static_cast<int>(random() % 999), 0);
    }
    return tree;
}

/// The rules of copying and moving, written down plainly.
void plainMerge(KV_UValDict &from, KV_UValDict &to, bool skipsNull) {
    for (const auto &[key, value] : *from.GetValuePtr()) {
        if (value == nullptr && skipsNull) continue;
        KV_UVal *&there = (*to.GetValuePtr())[key];
        auto *left = dynamic_cast<KV_UValDict *>(value), *right = dynamic_cast<KV_UValDict *>(there);
        if (left != nullptr && right != nullptr) {
            plainMerge(*left, *right, skipsNull);
        } else {
            delete there;
            there = value != nullptr ? value->DeepCopy() : nullptr;
        }
    }
}

TEST(UValDict, CopiesAndMovesMerge) {
    std::mt19937 random(4711);
    for (int round = 0; round < 300; ++round) {
        const std::unique_ptr<KV_UValDict> source(randomTree(random, 4)), target(randomTree(random, 4));
        target->SetNrItemsToPrint(round);
        KV_UValDict expected(*target);
        EXPECT_EQ(flat(expected), flat(*target));
        EXPECT_EQ(expected.GetNrItemsToPrint(), round);
        const bool isCopy = round % 2 != 0;
        plainMerge(*source, expected, isCopy);
        const std::string before = flat(*source);
        isCopy ? source->CopyTo(target.get()) : source->MoveTo(target.get());
        EXPECT_EQ(flat(*target), flat(expected)) << "round " << round;
        EXPECT_EQ(flat(*source), isCopy ? before : "");
    }
}

struct OverlapCase {
    const char *name, *tree, *from, *path, *to, *result;  // path "*" means all entries
};
const OverlapCase kMoves[] = {
    {"into itself", "a=1 b:c=2", "", "*", "", "a=1 b:c=2"},
    {"into a child", "a:x=1 b=2", "", "*", "a", "a:b=2 a:x=1"},
    {"into a grandchild", "a:b:x=1 a:y=3 c=2", "", "*", "a:b", "a:b:c=2 a:b:x=1 a:y=3"},
    {"up", "a:x=1 b=2", "a", "*", "", "a={} b=2 x=1"},
    {"up, over itself", "a:a=5 a:b=6", "a", "*", "", "a=5 b=6"},
    {"up, over the one around it", "a:s:a:s=5 a:s:b=6", "a:s", "*", "", "a:s=5 b=6"},
    {"up, into itself", "a:a:x=1", "a", "*", "", "a={} x=1"},
    {"up, into itself twice", "a:a:a:x=1 a:b=2", "a", "*", "", "a={} b=2 x=1"},
    {"empty keys", ":x=3 a={}", "", "*", "a", "a::x=3"},
    {"one to its place", "a:x=1", "", "a", "", "a:x=1"},
    {"one into itself", "a:x=1", "", "a", "a", "a:x=1"},
    {"one into its child", "a:b:x=1", "", "a", "a:b", "a:b:x=1"},
    {"one below its place", "p:p:x=1", "", "p:p", "p", "p:p:p:x=1"},
    {"one without a place", "a:b=1 c:a=7", "", "a:b", "c", "a:b=1 c:a=7"},
    {"one null", "c:n=7 n=null", "", "n", "c", "c:n=null"},
    {"one missing", "a=1 b={}", "", "x:y", "b", "a=1 b={}"},
};
const OverlapCase kCopies[] = {
    {"to a child", "a:x=1 b=2", "", "*", "a", "a:a:x=1 a:b=2 a:x=1 b=2"},
    {"up, over itself", "a:a=5 a:b=6", "a", "*", "", "a=5 b=6"},
    {"up, into itself", "a:a:x=1", "a", "*", "", "a:a:x=1 a:x=1"},
    {"one into itself", "a:x=1", "", "a", "a", "a:a:x=1 a:x=1"},
    {"one to its place", "a:x=1", "", "a:x", "", "a:x=1"},
    {"one without a place", "a:b=1 c:a=7", "", "a:b", "c", "a:b=1 c:a=7"},
};

TEST(UValDict, SourceAndTargetMayLieWithinEachOther) {
    const auto run = [](const OverlapCase &c, bool isCopy) {
        Filled dict(c.tree);
        KV_UValDict *from = dictAt(dict, c.from), *to = dictAt(dict, c.to);
        const bool isAll = c.path[0] == '*';
        if (isAll) isCopy ? from->CopyTo(to) : from->MoveTo(to);
        if (!isAll) isCopy ? from->CopyUValTo(c.path, to) : from->MoveUValTo(c.path, to);
        EXPECT_EQ(flat(dict), c.result) << (isCopy ? "copy " : "move ") << c.name;
    };
    for (const OverlapCase &c : kMoves)
        run(c, false);
    for (const OverlapCase &c : kCopies)
        run(c, true);

    Filled dict("a:b=1 c=2");
    dict = *dictAt(dict, "");
    EXPECT_EQ(flat(dict), "a:b=1 c=2");
    *dictAt(dict, "a") = dict;
    EXPECT_EQ(flat(dict), "a:a:b=1 a:c=2 c=2");
    dict = *dictAt(dict, "a");
    EXPECT_EQ(flat(dict), "a:b=1 c=2");
    dict.CopyTo(nullptr);
    dict.MoveTo(nullptr);
    EXPECT_EQ(dict.CopyUValTo("c", nullptr), nullptr);
    EXPECT_EQ(dict.MoveUValTo("c", nullptr), nullptr);
    Filled other("a:x=1");
    KV_UVal *there = other.GetUVal("a");
    EXPECT_EQ(dict.CopyUValTo("a", &other), there) << "the merged dictionary";
    EXPECT_EQ(dict.MoveUValTo("a", &other), there);
    EXPECT_EQ(flat(dict) + " " + flat(other), "c=2 a:b=1 a:x=1");
}

TEST(UValDict, DepthIsNoMatter) {
    std::string text;
    for (int i = 0; i < 300000; ++i)
        text += "k:";
    const KV_DictPath path(text.c_str());
    KV_UValDict dict(0), other(0);
    dict.DefineUVal(path, KV_UVAL_LONG, 0, nullptr)->SetLongValue(7, 0);
    other.DefineUValDict(path);
    KV_UValDict copy(dict);
    EXPECT_EQ(copy.GetValue(path, 0L, 0), 7);
    copy.CopyTo(&other);
    EXPECT_EQ(other.GetValue(path, 0L, 0), 7);
    other.SetValue(path, 8L, 0);
    other.MoveTo(&copy);
    EXPECT_EQ(copy.GetValue(path, 0L, 0), 8);
    EXPECT_EQ(copy.MoveUValTo("k", &dict), dict.GetUVal("k"));
    EXPECT_EQ(dict.GetValue(path, 0L, 0), 8);
    dict.Clear();
    EXPECT_EQ(dict.GetSize(), 0);
}

}  // namespace
