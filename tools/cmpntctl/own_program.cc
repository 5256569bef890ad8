// Where this program is found inside a device root.
#include <link.h>
#include <stdlib.h>

#include <filesystem>

#include "device_root.hh"
#include "isolation.hh"

namespace fs = std::filesystem;

namespace cmpntctl {
namespace {

constexpr char shown_folder[] = "/.cmpntctl";

// As the loader found them, under the names by which they are looked for.
int add_library(struct dl_phdr_info *info, size_t, void *libraries) {
    if (info->dlpi_name != nullptr && info->dlpi_name[0] == '/') {
        static_cast<std::vector<std::string> *>(libraries)->push_back(info->dlpi_name);
    }
    return 0;
}

std::string shown_as(const fs::path &path) {
    return std::string(shown_folder) + "/" + path.filename().string();
}

std::string search_path() {
    const char *path = getenv("PATH");
    return path != nullptr && *path != '\0' ? path : "/usr/local/bin:/usr/bin:/bin";
}

// The folder is made first, or only root could pass it.
void show_file(std::vector<std::string> &options, const std::string &path) {
    for (const char *word : {"--perms", "0755", "--dir", shown_folder}) {
        options.push_back(word);
    }
    for (const std::string &word : {std::string("--ro-bind"), path, shown_as(path)}) {
        options.push_back(word);
    }
}

void set_variable(std::vector<std::string> &options, const char *name, const std::string &value) {
    for (const std::string &word : {std::string("--setenv"), std::string(name), value}) {
        options.push_back(word);
    }
}

}  // namespace

OwnProgram show_own_program() {
    OwnProgram program;
    program.path = fs::read_symlink("/proc/self/exe").string();
    if (is_private(program.path)) {
        show_file(program.options, program.path);
        program.path = shown_as(program.path);
    }
    std::vector<std::string> libraries;
    dl_iterate_phdr(add_library, &libraries);
    bool are_libraries_shown = false;
    for (const std::string &library : libraries) {
        if (is_private(library)) {
            show_file(program.options, library);
            are_libraries_shown = true;
        }
    }
    if (are_libraries_shown) {
        set_variable(program.options, "LD_LIBRARY_PATH", shown_folder);
    }
    // So that it can be called by its name from a shell inside.
    set_variable(program.options, "PATH",
                 search_path() + ":" + fs::path(program.path).parent_path().string());
    return program;
}

}  // namespace cmpntctl
