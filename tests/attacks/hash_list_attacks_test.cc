// Signed lists of digests with odd lines.
#include "tests/attacks/attack_table.hh"

namespace {

class HashListAttacks : public AttackTest {};

const char fix1[] = "hello_1.0-fix1.deb";
constexpr size_t mebibyte = 1 << 20;

// The patch's list without its package, and these lines for it.
std::function<void()> lines(const std::string &text) {
    return [=] { write_patch_list(list_line(patch_text, "smu_hello") + text); };
}

std::function<void()> global_lines(const std::string &text) {
    return [=] { write_global_list(text); };
}

std::string digest() { return signing::sm3(package_text); }

std::string upper_case(std::string text) {
    for (char &letter : text) {
        letter = static_cast<char>(toupper(static_cast<unsigned char>(letter)));
    }
    return text;
}

// The package's line with this many fields.
std::string fields(int count) {
    std::string line = digest() + "  " + fix1;
    for (int i = 3; i < count; i++) {
        line += " x";
    }
    return line + "\n";
}

std::string refused_split() { return "cmpnt_detach_install_queue fail."; }
std::string refused_format() { return "hash file format err."; }

const Texts split = refused_load(patch_package, refused_split());
const Texts format = refused_load(patch_package, refused_format());

TEST_F(HashListAttacks, WithFields) {
    const std::string line = list_line(package_text, fix1);
    expect({
        {"fifteen", patch_package, lines(fields(15)), 0, {}},
        {"sixteen", patch_package, lines(fields(16)), -1, split},
        {"a thousand", patch_package, lines(fields(480)), -1, split},
        {"one blank", patch_package, lines(digest() + " " + fix1 + "\n"), -1, format},
        {"three blanks", patch_package, lines(digest() + "   " + fix1 + "\n"), -1, unlisted(fix1)},
        {"no blank", patch_package, lines(digest() + fix1 + "\n"), -1, format},
        {"a tab", patch_package, lines(digest() + "\t\t" + fix1 + "\n"), -1, format},
        {"tabs beside the name", patch_package, lines(digest() + "  \t" + fix1 + "\t\n"), 0, {}},
        {"a blank first", patch_package, lines(" " + line), -1, unlisted(fix1)},
        {"a blank last", patch_package, lines(digest() + "  " + fix1 + " \n"), 0, {}},
        {"only a digest", patch_package, lines(digest() + "\n"), -1, format},
        {"only a name", patch_package, lines("  " + std::string(fix1) + "\n"), -1,
         refused_digest(fix1, 3)},
        {"one after the good line", patch_package, lines(line + "x\n"), -1, format},
    });
}

TEST_F(HashListAttacks, WithLines) {
    const std::string line = list_line(package_text, fix1);
    const std::string cut = line.substr(0, line.size() - 1);
    const std::string both = list_line(patch_text, "smu_hello") + line;
    expect({
        {"blank ones", patch_package, lines("\n\n" + line + "\n\n"), 0, {}},
        {"a carriage return each", patch_package, lines(cut + "\r\n"), 0, {}},
        {"a blank one with a carriage return", patch_package, lines(line + "\r\n"), -1, format},
        {"blanks only", patch_package, lines("   \n" + line), 0, {}},
        {"no final newline", patch_package, lines(cut), -1, unlisted(fix1)},
        {"no final newline, and a letter more", patch_package, lines(cut + "x"), 0, {}},
        {"none", patch_package, [] { write_patch_list(""); }, -1,
         refused_directory("cmpnt_check_patch_hash_value(smu_hello) fail.")},
        {"one newline", patch_package, [] { write_patch_list("\n"); }, -1,
         refused_directory("cmpnt_check_patch_hash_value(smu_hello) fail.")},
        {"a mark of the byte order", patch_package,
         [=] { write_patch_list("\xEF\xBB\xBF" + both); }, -1, refused_smu_file("smu_hello", 3)},
        {"two bytes a letter", patch_package,
         [=] {
             std::string wide;
             for (const char letter : both) {
                 wide += std::string{letter, '\0'};
             }
             write_patch_list(wide);
         },
         -1, format},
    });
}

TEST_F(HashListAttacks, WithLongLines) {
    const std::string line = list_line(package_text, fix1);
    // 1023 characters with the newline, the most that is read at once.
    const std::string padded = digest() + "  " + fix1 + " ";
    const std::string full = padded + std::string(1022 - padded.size(), 'x') + "\n";
    expect({
        {"a mebibyte of letters", patch_package, lines(std::string(mebibyte, 'x') + "\n" + line),
         -1, format},
        {"a mebibyte of blanks", patch_package, lines(std::string(mebibyte, ' ') + "\n" + line), -1,
         split},
        {"a thousand blank ones before it",
         patch_package,
         lines(std::string(1000, '\n') + line),
         0,
         {}},
        {"a mebibyte of name", patch_package,
         lines(line + digest() + "  " + std::string(mebibyte, 'n') + "\n"), -1, format},
        {"as long as is read at once", patch_package, lines(full), 0, {}},
        {"a letter longer", patch_package, lines(full.substr(0, 1022) + "x\n" + line), 0, {}},
        {"two letters longer", patch_package, lines(full.substr(0, 1022) + "xx\n"), -1, format},
        {"a piece that is a line",
         patch_package,
         lines("x  y" + std::string(1019, 'z') + line),
         0,
         {}},
    });
}

TEST_F(HashListAttacks, WithZeroBytes) {
    const std::string zero(1, '\0');
    const std::string line = list_line(package_text, fix1);
    const std::string named = digest() + "  " + fix1;
    const auto row = [](const char *name, const std::string &text, const Texts &errors) {
        return Attack{name, patch_package, lines(text), errors.empty() ? 0 : -1, errors};
    };
    expect({
        row("before the good line", zero + line + line, {}),
        row("a line of them", std::string(100, '\0') + "\n" + line, {}),
        row("in the digest",
            digest().substr(0, 10) + zero + digest().substr(11) + "  " + fix1 + "\n", format),
        row("behind the name", named + zero + "x\n", unlisted(fix1)),
        row("behind a letter more", named + "x" + zero + "\n", {}),
        row("a mebibyte of them", std::string(mebibyte, '\0') + "\n" + line, {}),
    });
}

TEST_F(HashListAttacks, WithDigests) {
    const auto with = [](const std::string &digest) { return lines(digest + "  " + fix1 + "\n"); };
    const std::string good = list_line(package_text, fix1);
    const std::string other = list_line("another package", fix1);
    const Texts malformed = refused_digest(fix1, 3);
    expect({
        {"upper case", patch_package, with(upper_case(digest())), 0, {}},
        {"that of another file", patch_package, lines(other), -1, refused_digest(fix1)},
        {"a digit less", patch_package, with(digest().substr(1)), -1, malformed},
        {"a digit more", patch_package, with(digest() + "0"), -1, malformed},
        {"no digit", patch_package, with("g" + digest().substr(1)), -1, malformed},
        {"a number's beginning", patch_package, with("0x" + digest().substr(2)), -1, malformed},
        {"one digit", patch_package, with("0"), -1, malformed},
        {"eight hundred digits", patch_package, with(std::string(800, '0')), -1, malformed},
        {"the package twice, with one digest", patch_package, lines(good + good), 0, {}},
        {"the package twice, the good one first", patch_package, lines(good + other), 0, {}},
        {"the package twice, the good one last", patch_package, lines(other + good), -1,
         refused_digest(fix1)},
    });
}

TEST_F(HashListAttacks, WithNames) {
    const auto named = [](const std::string &name, const std::string &listed) {
        return [=] {
            write_file(patch_folder + ("/" + name), package_text);
            write_patch_list(list_line(patch_text, "smu_hello") + list_line(package_text, listed));
        };
    };
    const auto path = [](const std::string &name) { return patch_folder + ("/" + name); };
    const std::string longest = std::string(251, 'n') + ".deb";
    expect({
        {"a blank", path("a b.deb"), named("a b.deb", "a b.deb"), -1, unlisted("a b.deb")},
        {"a blank, where the part before it is meant",
         path("a"),
         named("a", "a b.deb"),
         -1,
         {"get_file_type: The file_name(" + path("a") + ") type is invalid.",
          "cmpnt_safe_verify: get_file_type fail, file_name(" + path("a") + ")."}},
        {"a way up", path(fix1), named(fix1, "../smu_hello/" + std::string(fix1)), -1,
         unlisted(fix1)},
        {"a way up, in the path only", path("../smu_hello/x.deb"), named("x.deb", "x.deb"), 0, {}},
        {"two dots", path("..deb"), named("..deb", "..deb"), 0, {}},
        {"quotes", path("a'b\"c`d`.deb"), named("a'b\"c`d`.deb", "a'b\"c`d`.deb"), 0, {}},
        {"a command", path("$(touch x);x.deb"), named("$(touch x);x.deb", "$(touch"), -1,
         unlisted("$(touch x);x.deb")},
        {"conversions", path("%s%n.deb"), named("%s%n.deb", "%s%n.deb"), 0, {}},
        {"no letters", path("\xff\xfe.deb"), named("\xff\xfe.deb", "\xff\xfe.deb"), 0, {}},
        {"255 bytes", path(longest), named(longest, longest), 0, {}},
        {"255 bytes, listed with one more", path(longest), named(longest, longest + "x"), -1,
         unlisted(longest)},
        {"a path", path(fix1), named(fix1, path(fix1)), -1, unlisted(fix1)},
        {"other letters' size", path(fix1), named(fix1, upper_case(fix1)), -1, unlisted(fix1)},
    });
}

// The same of the global list, where what is not listed passes.
TEST_F(HashListAttacks, OfBasePackages) {
    const std::string evil = signing::sm3("another file\n");
    const std::string hello = "/usr/bin/hello";
    const auto load = [](const std::string &why) { return refused_load(base_package, why); };
    expect({
        {"another digest", base_package, global_lines(evil + "  " + hello + "\n"), -1,
         refused_file(hello, 0)},
        {"no digest", base_package, global_lines("x  " + hello + "\n"), -1,
         refused_file(hello, 0, 3)},
        {"upper case",
         base_package,
         [] { write_global_list(upper_case(signing::sm3(hello_text)) + "  /usr/bin/hello\n"); },
         0,
         {}},
        {"an empty list", base_package, global_lines(""), 0, {}},
        {"three blanks", base_package, global_lines(evil + "   " + hello + "\n"), 0, {}},
        {"no final newline", base_package, global_lines(evil + "  " + hello), 0, {}},
        {"one blank", base_package, global_lines(evil + " " + hello + "\n"), -1,
         load(refused_format())},
        {"sixteen fields", base_package,
         global_lines(evil + "  " + hello + " 4 5 6 7 8 9 10 11 12 13 14 15 16\n"), -1,
         load(refused_split())},
        {"a mebibyte", base_package, global_lines(std::string(mebibyte, 'x') + "\n"), -1,
         load(refused_format())},
        {"the file twice, the good one first",
         base_package,
         global_lines(good_global_list() + evil + "  " + hello + "\n"),
         0,
         {}},
        {"the file twice, the good one last", base_package,
         global_lines(evil + "  " + hello + "\n" + good_global_list()), -1, refused_file(hello, 0)},
        {"another name of the file",
         base_package,
         global_lines(evil + "  /usr//bin/hello\n" + evil + "  /usr/bin/./hello\n" + evil +
                      "  usr/bin/hello\n" + evil + "  /bin/../usr/bin/hello\n"),
         0,
         {}},
    });
}

}  // namespace
