// Finding one package near the end of a status file beside apt's reader of such files, which steps
// through the paragraphs and looks at their names: in the file of a device with many packages, and
// in that of this machine, with its long descriptions and file lists.
#include <apt-pkg/fileutl.h>
#include <apt-pkg/tagfile.h>
#include <stdio.h>

#include <fstream>
#include <sstream>
#include <string>

#include "bench/pair.hh"
#include "libcmpnt_db.h"

namespace {

constexpr int device_packages = 5000;
constexpr char machine_status[] = "/host/dpkg-status";

struct StatusFile {
    std::string path;
    std::string wanted;  // the last but one package; empty when there is no such file
};

std::string device_paragraph(int number) {
    char text[1024];
    snprintf(text, sizeof(text),
             "Package: app-module-%d\n"
             "Version: 2.%d.%d-r1\n"
             "Depends: libc6 (>= 2.31), libssl1.1 (>= 1.1.1), app-base (= 2.%d)\n"
             "Provides: app-module\n"
             "Status: install user installed\n"
             "Section: base\n"
             "Architecture: cortexa9hf-neon\n"
             "Maintainer: Platform Team <platform@example.com>\n"
             "MD5Sum: d41d8cd98f00b204e9800998ecf8%04x\n"
             "Size: %d\n"
             "Filename: app-module-%d_2.%d.%d-r1_cortexa9hf-neon.ipk\n"
             "Source: https://example.com/sources/app-module-%d.tar.gz\n"
             "Description: Application module number %d of the device\n"
             " It serves the interfaces of one line card and is restarted with it.\n"
             "Installed-Size: %d\n"
             "Installed-Time: %d\n"
             "\n",
             number, number % 10, number % 7, number % 10, number % 0x10000, 10000 + number, number,
             number % 10, number % 7, number, number, 30000 + number, 1700000000 + number);
    return text;
}

StatusFile device_file() {
    StatusFile file = {"/tmp/device-status", "app-module-" + std::to_string(device_packages - 2)};
    std::ofstream out(file.path);
    for (int i = 0; i < device_packages; i++) {
        out << device_paragraph(i);
    }
    return file;
}

// A copy: the library insists on a file that it may write.
StatusFile machine_file() {
    StatusFile file = {"/tmp/machine-status", ""};
    std::ifstream in(machine_status);
    std::ofstream out(file.path);
    std::string last;
    for (std::string line; std::getline(in, line);) {
        out << line << '\n';
        if (line.compare(0, 9, "Package: ") == 0) {
            file.wanted = last;
            last = line.substr(9);
        }
    }
    return file;
}

const StatusFile &status_file(long number) {
    static const StatusFile files[] = {device_file(), machine_file()};
    return files[number];
}

void find_with_library(benchmark::State &state) {
    const StatusFile &file = status_file(state.range(0));
    for (auto _ : state) {
        cmpnt_control_info record;
        cmpnt_file_param param;
        set_file_param(&param, CMPNT_PARSE_FIND_PACKAGE,
                       reinterpret_cast<intptr_t>(file.wanted.c_str()), 0, 0);
        parse_pkg_info_from_file(&record, file.path.c_str(), &param);
        if (file.wanted.empty() || file.wanted != record.package) {
            state.SkipWithError("the package was not found");
            break;
        }
    }
}

void find_with_apt(benchmark::State &state) {
    const StatusFile &file = status_file(state.range(0));
    for (auto _ : state) {
        FileFd descriptor(file.path, FileFd::ReadOnly);
        pkgTagFile paragraphs(&descriptor);
        pkgTagSection paragraph;
        bool found = false;
        while (!found && paragraphs.Step(paragraph)) {
            found = paragraph.Find("Package") == APT::StringView(file.wanted);
        }
        if (!found) {
            state.SkipWithError("the package was not found");
            break;
        }
    }
}

const bool added =
    add_pair("package in a device's status file", 1.1, find_with_library, find_with_apt, 0) &&
    add_pair("package in this machine's status file", 1.1, find_with_library, find_with_apt, 1);

}  // namespace
