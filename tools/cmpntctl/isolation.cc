#include "isolation.hh"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "command.hh"
#include "device_root.hh"

extern char **environ;

namespace fs = std::filesystem;

namespace cmpntctl {
namespace {

constexpr int status_fd = 3;  // of bubblewrap, on which it tells how far it came

using Words = std::vector<std::string>;

void append(Words &words, const Words &more) {
    words.insert(words.end(), more.begin(), more.end());
}

// Not the whole root in one: a missing /data could not be laid over a read-only one.
void show_machine(Words &options) {
    std::error_code error;
    for (const fs::directory_entry &entry : fs::directory_iterator("/", error)) {
        const std::string path = entry.path().string();
        if (is_private(path) || path == "/dev") {
            continue;
        }
        if (entry.is_symlink(error)) {
            append(options, {"--symlink", fs::read_symlink(path, error).string(), path});
        } else if (entry.is_directory(error)) {
            append(options, {"--ro-bind-try", path, path});
        }
    }
}

// The folder one stands in, where it can be seen inside.
std::string working_folder() {
    std::error_code error;
    const std::string folder = fs::current_path(error).string();
    return folder.empty() || is_private(folder) ? "/" : folder;
}

// What a spawned bubblewrap said.
struct Outcome {
    int exit_code;
    bool isolated;
    bool started;
};

class Pipe {
public:
    Pipe() {
        if (pipe2(ends_, O_CLOEXEC | O_NONBLOCK) != 0) {
            throw Failure(ExitCode::failed, std::string("no pipe: ") + strerror(errno),
                          "Close programs and try again.");
        }
    }
    ~Pipe() {
        close(ends_[0]);
        close(ends_[1]);
    }
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;
    int write_end() const { return ends_[1]; }
    std::string take_all() const {
        char text[4096];
        const ssize_t length = read(ends_[0], text, sizeof(text));
        return length > 0 ? std::string(text, static_cast<size_t>(length)) : std::string();
    }

private:
    int ends_[2];
};

// An interrupt at the keyboard is the command's to answer, as with a shell's.
class IgnoredInterrupts {
public:
    IgnoredInterrupts() {
        struct sigaction ignore = {};
        ignore.sa_handler = SIG_IGN;
        sigaction(SIGINT, &ignore, &interrupt_);
        sigaction(SIGQUIT, &ignore, &quit_);
    }
    ~IgnoredInterrupts() {
        sigaction(SIGINT, &interrupt_, nullptr);
        sigaction(SIGQUIT, &quit_, nullptr);
    }
    IgnoredInterrupts(const IgnoredInterrupts &) = delete;
    IgnoredInterrupts &operator=(const IgnoredInterrupts &) = delete;

private:
    struct sigaction interrupt_, quit_;
};

pid_t spawn(const Words &words, int pipe_end) {
    std::vector<char *> arguments;
    for (const std::string &word : words) {
        arguments.push_back(const_cast<char *>(word.c_str()));
    }
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe_end, status_fd);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGQUIT);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

    pid_t process = -1;
    const int error =
        posix_spawnp(&process, arguments[0], &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw Failure(ExitCode::failed, words[0] + " cannot be run: " + strerror(error),
                      "A device root is entered with bubblewrap: install the package bubblewrap.");
    }
    return process;
}

Outcome wait_for(pid_t process, const Pipe &pipe) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {}
    const std::string told = pipe.take_all();
    const int code = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    const auto has = [&told](const char *member) { return told.find(member) != std::string::npos; };
    return {code, has("\"child-pid\""), has("\"exit-code\"") || WIFSIGNALED(status)};
}

}  // namespace

Words isolation_options(const std::string &root) {
    Words options;
    show_machine(options);
    append(options, {"--dev", "/dev"});
    for (const std::string folder : private_folders) {
        append(options, {"--bind", root + folder, folder});
    }
    // Root keeps what it may; anybody else has nothing to keep.
    if (geteuid() == 0) {
        append(options, {"--cap-add", "ALL"});
    }
    append(options, {"--unsetenv", "TMPDIR", "--chdir", working_folder(), "--die-with-parent"});
    return options;
}

int run_isolated(const std::string &root, const Words &command) {
    Words words = {"bwrap", "--json-status-fd", std::to_string(status_fd)};
    append(words, isolation_options(root));
    append(words, show_own_program().options);
    append(words, {"--remount-ro", "/", "--"});
    append(words, command);

    const Pipe pipe;
    const IgnoredInterrupts ignored;
    const Outcome outcome = wait_for(spawn(words, pipe.write_end()), pipe);
    if (!outcome.isolated) {
        throw Failure(ExitCode::failed, "no device root can be entered on this machine",
                      "Bubblewrap needs user namespaces, or root: ask the machine's (or the "
                      "container's) owner to allow them.");
    }
    if (!outcome.started) {
        throw Failure(
            ExitCode::failed, "cannot run " + command[0] + " in " + root,
            "It must be found inside, where /var, /data, /tmp and /opt are the device's.");
    }
    return outcome.exit_code;
}

}  // namespace cmpntctl
