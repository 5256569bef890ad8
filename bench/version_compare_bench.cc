// Version comparison beside that of the machine's own package manager, which its users feed with
// texts: they are parsed, then compared. The versions are those installed on this machine, each met
// by those of other packages and by equal, older and newer ones of its own.
#include <dpkg/dpkg-db.h>
#include <dpkg/dpkg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <utility>
#include <vector>

#include "bench/pair.hh"
#include "libcmpnt_db.h"

namespace {

constexpr char status_file[] = "/host/dpkg-status";
constexpr char version_key[] = "Version: ";

std::vector<std::string> installed_versions() {
    std::vector<std::string> versions;
    char line[4096];
    FILE *file = fopen(status_file, "re");
    while (file != nullptr && fgets(line, sizeof(line), file) != nullptr) {
        if (strncmp(line, version_key, strlen(version_key)) == 0) {
            line[strcspn(line, "\n")] = '\0';
            versions.push_back(line + strlen(version_key));
        }
    }
    if (file != nullptr) {
        fclose(file);
    }
    return versions;
}

std::vector<std::pair<std::string, std::string>> corpus() {
    const std::vector<std::string> versions = installed_versions();
    std::vector<std::pair<std::string, std::string>> pairs;
    for (size_t i = 0; i < versions.size(); i++) {
        const std::string &version = versions[i];
        pairs.emplace_back(version, versions[(i + 1) % versions.size()]);
        pairs.emplace_back(version, versions[(i * 397 + 11) % versions.size()]);
        pairs.emplace_back(version, version);
        pairs.emplace_back(version, version + "+deb12u1");
        pairs.emplace_back(version + "~bpo12+1", version);
    }
    return pairs;
}

const std::vector<std::pair<std::string, std::string>> &versions() {
    static const std::vector<std::pair<std::string, std::string>> all = corpus();
    return all;
}

void compare(benchmark::State &state) {
    if (versions().empty()) {
        state.SkipWithError("this machine has no list of installed packages");
    }
    for (auto _ : state) {
        for (const auto &[a, b] : versions()) {
            benchmark::DoNotOptimize(cmpnt_version_compare(a.c_str(), b.c_str()));
        }
    }
}

void parse_and_compare(benchmark::State &state) {
    for (auto _ : state) {
        for (const auto &[a, b] : versions()) {
            dpkg_version first = {};
            dpkg_version second = {};
            parseversion(&first, a.c_str(), nullptr);
            parseversion(&second, b.c_str(), nullptr);
            benchmark::DoNotOptimize(dpkg_version_compare(&first, &second));
        }
        nffreeall();  // where the parser keeps its texts
    }
}

void compare_parsed(benchmark::State &state) {
    std::vector<std::pair<dpkg_version, dpkg_version>> parsed;
    for (const auto &[a, b] : versions()) {
        dpkg_version first = {};
        dpkg_version second = {};
        parseversion(&first, a.c_str(), nullptr);
        parseversion(&second, b.c_str(), nullptr);
        parsed.emplace_back(first, second);
    }
    for (auto _ : state) {
        for (const auto &[first, second] : parsed) {
            benchmark::DoNotOptimize(dpkg_version_compare(&first, &second));
        }
    }
    nffreeall();
}

const bool added = add_pair("version comparison", 0.40, compare, parse_and_compare) &&
                   add_pair("version comparison, parsed before", 1.0, compare, compare_parsed);

}  // namespace
