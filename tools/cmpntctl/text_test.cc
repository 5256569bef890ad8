// Texts from anywhere, as JSON and on a terminal.
#include <gmock/gmock.h>

#include "json_text.hh"
#include "table.hh"

namespace cmpntctl {
namespace {

const std::vector<std::string> odd_texts = {
    "",
    "plain",
    "quote \" backslash \\ slash /",
    std::string("zero \0 byte", 11),
    "line\nline\ttab\rreturn\x01\x1f\x7f",
    "gr\xc3\xbc\xc3\x9f"
    "e \xe2\x82\xac \xf0\x9f\x98\x80",
    "cut \xc3",
    "cut \xe2\x82",
    "cut \xf0\x9f\x98",
    "\xe2\x82z\xf0\x9f\x98z",
    "\x80\xbf\xfe\xff",
    "overlong \xc0\xaf \xe0\x80\xaf \xf0\x80\x80\xaf",
    "surrogate \xed\xa0\x80 beyond \xf4\x90\x80\x80",
};

std::string as_json(const std::string &text) {
    std::string json;
    append_json_string(json, text.data(), text.size());
    return json;
}

TEST(JsonText, SaysTheSameAsTheJsonLibrary) {
    for (const std::string &text : odd_texts) {
        const std::string dumped = Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
        EXPECT_EQ(Json::parse(as_json(text)), Json::parse(dumped)) << dumped;
    }
}

TEST(JsonText, IsOneLine) {
    for (const std::string &text : odd_texts) {
        EXPECT_EQ(as_json(text).find('\n'), std::string::npos);
    }
}

TEST(Printable, LeavesNothingThatATerminalObeys) {
    EXPECT_EQ(printable("a\x1b[31mb\x07"
                        "c\nd\x7f"
                        "e\xc2\x9b"
                        "f\xff"),
              "a?[31mb?c?d?e?f?");
    EXPECT_EQ(printable("gr\xc3\xbc\xc3\x9f"
                        "e\xc3"),
              "gr\xc3\xbc\xc3\x9f"
              "e?");
}

Session terminal(int width) {
    Session session;
    session.is_terminal = true;
    session.width = width;
    return session;
}

TEST(Table, AlignsColumns) {
    Table table({"NAME", "V"});
    table.add(
        {"gr\xc3\xbc\xc3\x9f"
         "e",
         "1"});
    table.add({"b", "22"});
    EXPECT_EQ(table.text(Session()),
              "NAME   V\ngr\xc3\xbc\xc3\x9f"
              "e  1\nb      22\n");
}

TEST(Table, ShrinksTheWidestToTheTerminal) {
    Table table({"NAME", "DESCRIPTION", "PATH"});
    table.add({"bash", "corrects what was wrong", "/data/cmpnt/opkg/download/bash.ipk"});
    EXPECT_EQ(table.text(terminal(40)),
              "NAME  DESCRIPTION       PATH\n"
              "bash  correct..s wrong  ..nload/bash.ipk\n");
}

TEST(Table, IsWholeWhereNobodyLooks) {
    Table table({"NAME"});
    table.add({std::string(300, 'a')});
    EXPECT_EQ(table.text(Session()), "NAME\n" + std::string(300, 'a') + "\n");
}

TEST(Table, KeepsNarrowColumnsReadable) {
    Table table({"A", "B"});
    table.add({std::string(20, 'a'), std::string(20, 'b')});
    EXPECT_EQ(table.text(terminal(5)), "A         B\naaa..aaa  bbb..bbb\n");
}

}  // namespace
}  // namespace cmpntctl
