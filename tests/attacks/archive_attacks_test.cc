// Base packages whose archives are not what they should be, or would be unpacked elsewhere.
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "tests/attacks/attack_table.hh"

namespace {

const Texts no_unpacking = {"cmpnt_safe_verify: cmpnt_unzip_safe_verify_file fail"};

std::string in_scratch(const std::string &path) { return scratch_folder + path; }

Texts not_there(const std::string &path) {
    return Texts{"cmpnt_unzip_safe_verify_file: file(" + path + ") is not exist."} + no_unpacking;
}

std::function<void()> package(const std::string &inner, const std::string &outer = "true") {
    return [=] { make_package(inner, outer); };
}

// Packs the inner archive itself, with these options of tar.
std::function<void()> packed(const std::string &inner, const std::string &options) {
    return package(inner + " && tar -czPf ../data.tar.gz " + options);
}

// Packs a plain inner archive of "usr/bin/hello", of which a header is edited behind tar's back.
std::function<void()> edited(const std::function<void(std::string &)> &change) {
    return [=] {
        make_package(
            "mkdir -p usr/bin && echo sing >usr/bin/hello && "
            "tar -cf ../data.tar.gz usr/bin/hello && cp ../data.tar.gz /opt/plain.tar");
        std::string archive = read_file("/opt/plain.tar");
        change(archive);
        write_file("/opt/plain.tar", archive);
        make_package("mv /opt/plain.tar ../data.tar.gz");
    };
}

constexpr size_t size_place = 124;

void write_field(std::string &archive, size_t place, const std::string &text) {
    archive.replace(place, text.size(), text);
}

// The first member with this type, and the checksum that goes with it.
void retype(std::string &archive, char type) {
    constexpr size_t checksum_place = 148, type_place = 156, header_size = 512;
    archive[type_place] = type;
    write_field(archive, checksum_place, "        ");
    unsigned sum = 0;
    for (size_t i = 0; i < header_size; i++) {
        sum += static_cast<unsigned char>(archive[i]);
    }
    char checksum[8];
    snprintf(checksum, sizeof(checksum), "%06o", sum);
    write_field(archive, checksum_place, std::string(checksum, 7));
}

// The member without its content, a block long.
void empty(std::string &archive) {
    constexpr size_t block_size = 512;
    archive.erase(block_size, block_size);
    write_field(archive, size_place, "00000000000");
}

void make_hard_link(std::string &archive, const std::string &target) {
    constexpr size_t target_place = 157;
    empty(archive);
    write_field(archive, target_place, target + '\0');
    retype(archive, '1');
}

bool may_make_devices() {
    const bool may = mknod("/opt/null", S_IFCHR | 0600, makedev(1, 3)) == 0;
    unlink("/opt/null");
    return may;
}

class ArchiveAttacks : public AttackTest {};

const char hello[] = "mkdir -p usr/bin && echo 'echo hello' >usr/bin/hello";
const char evil[] = "mkdir -p usr/bin && echo sing >usr/bin/hello";

TEST_F(ArchiveAttacks, OnTheOuterArchive) {
    const auto holding = [](const std::string &text) {
        return [=] { write_file(base_package, text); };
    };
    const auto cut = [](double part) {
        return [=] {
            const std::string good = read_file(base_package);
            write_file(
                base_package,
                good.substr(0, static_cast<size_t>(static_cast<double>(good.size()) * part)));
        };
    };
    expect({
        {"none", base_package, [] { remove_tree(base_package); }, -1, not_there(base_package)},
        {"text", base_package, holding("no archive\n"), -1, refused_archive()},
        {"half of it", base_package, cut(0.5), -1, refused_archive()},
        {"a tenth of it", base_package, cut(0.1), -1, refused_archive()},
        {"nothing", base_package, holding(""), -1, refused_archive()},
        {"4 MiB of zeros", base_package, holding(std::string(4 << 20, '\0')), -1,
         not_there(in_scratch("/data.tar.gz"))},
        {"plain", base_package, package(evil, "tar -cf ../base.ipk ."), -1,
         refused_file("/usr/bin/hello", 0)},
        {"plain and good", base_package, package(hello, "tar -cf ../base.ipk ."), 0, {}},
        {"text behind it", base_package,
         [] { write_file(base_package, read_file(base_package) + "text"); }, -1, refused_archive()},
        {"a directory", base_package,
         [] {
             remove_tree(base_package);
             make_directories(base_package);
         },
         -1, refused_archive()},
        {"a pipe", base_package,
         [] {
             remove_tree(base_package);
             EXPECT_EQ(mkfifo(base_package, 0600), 0);
         },
         -1, refused_archive()},
        {"a link to nowhere", base_package,
         [] {
             remove_tree(base_package);
             EXPECT_EQ(symlink("nowhere", base_package), 0);
         },
         -1, refused_archive()},
    });
}

TEST_F(ArchiveAttacks, OnTheInnerArchive) {
    const std::string inner_path = in_scratch("/data.tar.gz");
    const Texts refused = refused_inner_archive();
    expect({
        {"none", base_package, package("true", "mv data.tar.gz Data.tar.gz"), -1,
         not_there(inner_path)},
        {"deeper", base_package, package("true", "mkdir d && mv data.tar.gz d"), -1,
         not_there(inner_path)},
        {"text", base_package, package("true", "echo text >data.tar.gz"), -1, refused},
        {"half of it", base_package, package(hello, "truncate -s -60 data.tar.gz"), -1, refused},
        {"nothing", base_package, package("true", "rm data.tar.gz && touch data.tar.gz"), -1,
         refused},
        {"a directory", base_package, package("true", "rm data.tar.gz && mkdir data.tar.gz"), -1,
         refused},
        {"a pipe", base_package, package("true", "rm data.tar.gz && mkfifo data.tar.gz"), -1,
         refused},
        {"a link to a good one", base_package,
         package(hello, "mv data.tar.gz real && ln -s real data.tar.gz"), -1,
         not_there(inner_path)},
        {"a link to one of the device", base_package,
         package(hello, "mv data.tar.gz /opt/real && ln -s /opt/real data.tar.gz"), -1,
         not_there(inner_path)},
        {"plain", base_package, package(evil + std::string(" && tar -cf ../data.tar.gz .")), -1,
         refused_file("/usr/bin/hello", 0)},
        {"8 MiB of zeros for a file",
         base_package,
         package("mkdir -p usr/bin && truncate -s 8M usr/bin/zeros"),
         0,
         {}},
        {"8 MiB of zeros for the listed file", base_package,
         package("mkdir -p usr/bin && truncate -s 8M usr/bin/hello"), -1,
         refused_file("/usr/bin/hello", 0)},
        {"8 MiB of zeros for an archive",
         base_package,
         package("true", "head -c 8M /dev/zero | gzip >data.tar.gz"),
         0,
         {}},
        {"twice, and the last is the good one",
         base_package,
         package(hello,
                 "cp data.tar.gz /opt/good && echo x >data.tar.gz && "
                 "tar -cf ../base.ipk data.tar.gz && mv /opt/good data.tar.gz && "
                 "tar -rf ../base.ipk data.tar.gz"),
         0,
         {}},
        {"the bad file outside, the good one in it", base_package, package(hello, evil), 0, {}},
        {"the bad file outside only", base_package, package("true", evil), -1,
         refused_file("/usr/bin/hello", 0)},
    });
}

// Whatever an archive names its members, the canary lives.
TEST_F(ArchiveAttacks, WithMembersElsewhere) {
    const auto unpacked = [](const std::string &path) {
        return [=] { EXPECT_TRUE(exists(in_scratch(path))) << path; };
    };
    const std::string to_canary = "usr/bin/hello --transform 's,usr/bin/hello,";
    const auto renamed = [=](const std::string &name) {
        return packed(evil, to_canary + name + ",'");
    };
    const auto renamed_outside = [=](const std::string &name) {
        return package("true", evil + std::string(" && tar -czPf ../base.ipk data.tar.gz ") +
                                   to_canary + name + ",'");
    };
    expect({
        {"an absolute name", base_package, renamed("/opt/canary/bin/hello"), 0, {}},
        {"an absolute name of a listed file", base_package, renamed("/usr/bin/hello"), -1,
         refused_file("/usr/bin/hello", 0)},
        {"a name that leads up", base_package, renamed("../../../../../opt/canary/bin/hello"), -1,
         refused_inner_archive()},
        {"a name that leads up at its end", base_package, renamed("usr/.."), -1,
         refused_inner_archive()},
        {"a name that leads up in its middle", base_package,
         renamed("usr/../../../../../../opt/canary/bin/hello"), -1, refused_inner_archive()},
        {"an absolute name outside", base_package, renamed_outside("/opt/canary/bin/hello"), 0, {}},
        {"a name that leads up outside", base_package,
         renamed_outside("../../../../../opt/canary/bin/hello"), -1, refused_archive()},
        {"that of the saved patches",
         base_package,
         renamed("../.safe_verify_patch"),
         -1,
         refused_inner_archive(),
         {},
         unpacked("/data.tar.gz")},
        {"many slashes and dots", base_package, renamed("./././/usr/.//bin/hello"), -1,
         refused_file("/usr/bin/hello", 0)},
        {"a blank", base_package, renamed("usr/bin/hel lo"), 0, {}},
        {"a newline", base_package, renamed("usr/bin/hel\\nlo"), 0, {}},
        {"conversions", base_package, renamed("usr/bin/%s%n"), 0, {}},
        {"commands", base_package, renamed("usr/bin/$(touch x);`touch y`"), 0, {}},
    });
}

TEST_F(ArchiveAttacks, WithLinksToElsewhere) {
    const std::string link = "mkdir -p usr && ln -s /opt/canary/bin usr/bin";
    // A link, and in the same archive a file behind it.
    const auto through = [](const std::string &target) {
        return package("mkdir -p usr && ln -s " + target +
                       " usr/bin && tar -cf ../data.tar.gz usr/bin && rm usr/bin && " + evil +
                       " && tar -rf ../data.tar.gz usr/bin/hello");
    };
    const auto leave_link = [](const std::string &name, const std::string &target) {
        make_directories(in_scratch("/usr"));
        EXPECT_EQ(symlink(target.c_str(), in_scratch(name).c_str()), 0);
    };
    expect({
        {"of the outer archive", base_package, package(hello, link), 0, {}},
        {"of the outer archive, with a bad file behind it", base_package, package(evil, link), -1,
         refused_file("/usr/bin/hello", 0)},
        {"of the outer archive, to a file",
         base_package,
         package(hello, "mkdir -p usr/bin && ln -s /opt/canary/bin/hello usr/bin/hello"),
         0,
         {}},
        {"that an earlier package left", base_package,
         [=] {
             make_package(evil);
             leave_link("/usr/bin", "/opt/canary/bin");
         },
         -1, refused_file("/usr/bin/hello", 0)},
        {"that an earlier package left, to a file",
         base_package,
         [=] {
             make_directories(in_scratch("/usr/bin"));
             leave_link("/usr/bin/hello", "/opt/canary/bin/hello");
         },
         0,
         {}},
        {"that an earlier package left, for the inner archive",
         base_package,
         [=] { leave_link("/data.tar.gz", "/opt/canary/bin/hello"); },
         0,
         {}},
        {"in one archive, absolute", base_package, through("/opt/canary/bin"), -1,
         refused_inner_archive()},
        {"in one archive, leading up", base_package, through("../../../../../../opt/canary/bin"),
         -1, refused_inner_archive()},
        {"to a file, in the same place", base_package,
         package("mkdir -p usr/bin && ln -s /opt/canary/bin/hello usr/bin/hello && "
                 "tar -cf ../data.tar.gz usr/bin && rm usr/bin/hello && " +
                 std::string(evil) + " && tar -rf ../data.tar.gz usr/bin/hello"),
         -1, refused_file("/usr/bin/hello", 0)},
        {"a hard one, absolute", base_package,
         edited([](auto &archive) { make_hard_link(archive, "/opt/canary/bin/hello"); }), -1,
         refused_inner_archive()},
        {"a hard one, leading up", base_package, edited([](auto &archive) {
             make_hard_link(archive, "../../../../../opt/canary/bin/hello");
         }),
         -1, refused_inner_archive()},
    });
}

TEST_F(ArchiveAttacks, WithMembersThatAreNoFiles) {
    const auto typed = [](char type) {
        return edited([=](auto &archive) { retype(archive, type); });
    };
    const bool devices = may_make_devices();
    const auto device = [=](const char *name, char type) {
        const auto make = edited([=](auto &archive) {
            empty(archive);
            write_field(archive, 329, "0000001");
            write_field(archive, 337, "0000003");
            retype(archive, type);
        });
        return Attack{name, base_package, make, devices ? 0 : -1,
                      devices ? Texts{} : refused_inner_archive()};
    };
    const Texts refused = refused_file("/usr/bin/hello", 0);
    expect({
        device("a character device", '3'),
        device("a block device", '4'),
        {"a pipe", base_package, package("mkdir -p usr/bin && mkfifo usr/bin/hello"), 0, {}},
        {"an unknown type", base_package, typed('Z'), -1, refused},
        {"a contiguous file", base_package, typed('7'), -1, refused},
        {"the rest of a file on another volume", base_package, typed('M'), -1,
         refused_inner_archive()},
        {"a wrong checksum", base_package, edited([](auto &archive) { archive[0] = 'x'; }), -1,
         refused_inner_archive()},
        {"a size of 8 GiB", base_package, edited([](auto &archive) {
             write_field(archive, size_place, "77777777777");
             retype(archive, '0');
         }),
         -1, refused_inner_archive()},
        {"a size below zero", base_package, edited([](auto &archive) {
             write_field(archive, size_place, std::string(12, '\xff'));
             retype(archive, '0');
         }),
         -1, refused_inner_archive()},
        {"holes", base_package,
         packed("mkdir -p usr/bin && truncate -s 1M usr/bin/hello && echo >>usr/bin/hello",
                "--sparse ."),
         -1, refused},
        {"set-user-id",
         base_package,
         package(hello + std::string(" && chmod 6777 usr/bin/hello")),
         0,
         {}},
        {"no permissions",
         base_package,
         package(hello + std::string(" && chmod 0 usr/bin/hello")),
         0,
         {}},
    });
}

// What reaches the shell of a package's path, nobody has quoted.
TEST_F(ArchiveAttacks, WithThePathOfThePackage) {
    const auto row = [](const char *name, const std::string &path, int32_t result,
                        const Texts &changed = {}) {
        return Attack{name,
                      path,
                      [=] { write_file(path, read_file(base_package)); },
                      result,
                      result == 0 ? Texts{} : refused_archive(path),
                      changed};
    };
    const std::string folder_of_255 = "/data/" + std::string(255, 'd') + "/";
    expect({
        row("a blank", "/data/hello 1.0.ipk", -1),
        row("a command", "/data/x;touch /opt/touched;.ipk", -1, {"/opt/touched"}),
        row("a command in backquotes", "/data/`touch /opt/touched`.ipk", -1, {"/opt/touched"}),
        row("a command in brackets", "/data/$(touch /opt/touched).ipk", -1),
        row("an unclosed quote", "/data/hello'.ipk", -1),
        row("a redirection", "/data/x>/data/y.ipk", -1, {"/data/y.ipk"}),
        row("an option", "/data/x --nothing y.ipk", -1),
        row("brackets", "/data/hello(1).ipk", 0),
        row("a colon", "/data/host:hello.ipk", 0),
        row("a conversion", "/data/%s%n.ipk", 0),
        row("255 bytes of name", "/data/" + std::string(251, 'n') + ".ipk", 0),
        row("more bytes than a path has elsewhere", folder_of_255 + "hello.ipk", 0),
        {"more bytes than the command has room for",
         "/data" + std::string(1000, '/') + "hello_1.0.ipk", [] {}, -1, no_unpacking},
    });
}

}  // namespace
