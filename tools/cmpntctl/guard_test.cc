#include "guard.hh"

#include <gmock/gmock.h>

#include "command.hh"

namespace cmpntctl {
namespace {

using testing::HasSubstr;

using Guard = void (*)(const std::string &text);

void as_name(const std::string &text) { guard_name("the name", text, 79); }
void as_path(const std::string &text) { guard_path("the path", text); }
void as_text(const std::string &text) { guard_text("the text", text, 255); }

// What the guard says; empty when the text passes.
std::string refusal(Guard guard, const std::string &text) {
    try {
        guard(text);
        return "";
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.code(), ExitCode::usage);
        EXPECT_FALSE(failure.next().empty());
        return failure.what();
    }
}

struct Refused {
    const char *text;
    const char *reason;
};

const Refused misread[] = {
    {"a'b", "the character '"},
    {"a\"b", "the character \""},
    {"a`b", "the character `"},
    {"a b", "a blank"},
    {" ab", "a blank"},
    {"a\tb", "0x09"},
    {"a\nb", "0x0a"},
    {"a\rb", "0x0d"},
    {"a\x01", "0x01"},
    {"a\x1b[31m", "0x1b"},
    {"a\x7f", "0x7f"},
    {"a;b", "the character ;"},
    {"a&b", "the character &"},
    {"a|b", "the character |"},
    {"a<b", "the character <"},
    {"a>b", "the character >"},
    {"a$b", "the character $"},
    {"a\\b", "the character \\"},
    {"a*b", "the character *"},
    {"a?b", "the character ?"},
    {"a[b", "the character ["},
    {"a]b", "the character ]"},
    {"a{b", "the character {"},
    {"a}b", "the character }"},
    {"a!b", "the character !"},
    {"~ab", "begins with the character ~"},
    {"#ab", "begins with the character #"},
    {"-ab", "begins with the character -"},
    {"", "is empty"},
};

TEST(Guard, RefusesWhatWouldBeMisread) {
    for (const Refused &refused : misread) {
        EXPECT_THAT(refusal(as_name, refused.text), HasSubstr(refused.reason)) << refused.text;
        EXPECT_THAT(refusal(as_path, refused.text), HasSubstr(refused.reason)) << refused.text;
    }
}

TEST(Guard, RefusesAZeroByte) {
    const std::string text("a\0b", 3);
    EXPECT_THAT(refusal(as_name, text), HasSubstr("0x00"));
    EXPECT_THAT(refusal(as_path, text), HasSubstr("0x00"));
    EXPECT_THAT(refusal(as_text, text), HasSubstr("0x00"));
}

TEST(Guard, LetsOrdinaryNamesPass) {
    for (const char *name :
         {"bash", "smu_security", "libstdc++6", "1:5.2.15-2~b8+smu1", "a#b", "a-b", "a~",
          "gr\xc3\xbc\xc3\x9f"
          "e",
          "x(1)", "...", "a=b,c@d%e^f"}) {
        EXPECT_EQ(refusal(as_name, name), "") << name;
        EXPECT_EQ(refusal(as_path, name), "") << name;
    }
    EXPECT_EQ(refusal(as_path, "/data/cmpnt/opkg/download/bash_5.2.ipk"), "");
    EXPECT_EQ(refusal(as_path, "/"), "");
}

TEST(Guard, TakesNoPathForAName) {
    for (const char *name : {"a/b", "/a", "a/", "..", ".", "../a"}) {
        EXPECT_THAT(refusal(as_name, name), HasSubstr("is a path")) << name;
    }
}

TEST(Guard, KnowsHowMuchFits) {
    EXPECT_EQ(refusal(as_name, std::string(79, 'a')), "");
    EXPECT_THAT(refusal(as_name, std::string(80, 'a')),
                HasSubstr("has 80 bytes, and no more than 79"));
    EXPECT_EQ(refusal(as_path, std::string(259, 'a')), "");
    EXPECT_THAT(refusal(as_path, std::string(260, 'a')), HasSubstr("no more than 259"));
    EXPECT_EQ(refusal(as_text, std::string(255, 'a')), "");
    EXPECT_THAT(refusal(as_text, std::string(256, 'a')), HasSubstr("no more than 255"));
}

TEST(Guard, LetsTextsForPeopleHaveBlanks) {
    EXPECT_EQ(refusal(as_text, ""), "");
    EXPECT_EQ(refusal(as_text, "Corrects \"tar\" & more; costs $5 (see #7)"), "");
    EXPECT_THAT(refusal(as_text, "it's"), HasSubstr("the character '"));
    EXPECT_THAT(refusal(as_text, "a\\b"), HasSubstr("the character \\"));
    EXPECT_THAT(refusal(as_text, "a\nb"), HasSubstr("0x0a"));
}

// What it says goes to a terminal.
TEST(Guard, ShowsNoControlCharacter) {
    EXPECT_THAT(refusal(as_name, "a\x1b]0;x\x07"), HasSubstr("\"a?]0;x?\""));
}

TEST(Guard, NamesWhatWasGiven) {
    EXPECT_EQ(refusal(as_name, "a;b"),
              "the name \"a;b\" has the character ;, which SQL or a shell would misread");
}

}  // namespace
}  // namespace cmpntctl
