// Temporary directories and file helpers shared by the file and character stream tests.
#ifndef LUMO_TESTS_SUPPORT_FILES_H
#define LUMO_TESTS_SUPPORT_FILES_H

#include <lumo/base/Exception.h>

#include <gtest/gtest.h>

#include <dirent.h>
#include <ftw.h>
#include <grp.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace lumotest {

// A fresh directory under /tmp, removed with everything in it at the end.
class TempDir {
public:
    TempDir() {
        char name[] = "/tmp/lumo-chars-XXXXXX";
        char* made = ::mkdtemp(name);
        if (made != nullptr)
            m_path = made;
        // Open to other users, so that a test without root's rights can reach the
        // files whose own permissions it checks.
        if (!m_path.empty())
            ::chmod(m_path.c_str(), 0755);
    }
    ~TempDir() {
        if (m_path.empty())
            return;
        // Give back any permission a test took away so that removal succeeds.
        ::nftw(
            m_path.c_str(),
            [](char const* p, struct stat const* s, int, struct FTW*) {
                ::chmod(p, S_ISDIR(s->st_mode) ? 0700 : 0600);
                return 0;
            },
            16, FTW_PHYS);
        ::nftw(
            m_path.c_str(),
            [](char const* p, struct stat const*, int, struct FTW*) { return ::remove(p); }, 16,
            FTW_DEPTH | FTW_PHYS);
    }
    TempDir(TempDir const&) = delete;
    TempDir& operator=(TempDir const&) = delete;

    bool Ok() const { return !m_path.empty(); }
    std::string const& Path() const { return m_path; }
    std::string File(char const* name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

inline std::vector<unsigned char> ReadAll(std::string const& path) {
    std::vector<unsigned char> bytes;
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (f == nullptr)
        return bytes;
    unsigned char buf[4096];
    std::size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0)
        bytes.insert(bytes.end(), buf, buf + n);
    std::fclose(f);
    return bytes;
}

inline std::string ReadText(std::string const& path) {
    std::vector<unsigned char> const bytes = ReadAll(path);
    return std::string(bytes.begin(), bytes.end());
}

inline bool WriteAll(std::string const& path, std::string const& bytes) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (f == nullptr)
        return false;
    bool const ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    return std::fclose(f) == 0 && ok;
}

// Whether a command is installed.
inline bool HaveCommand(std::string const& name) {
    return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

// The output of a shell command, or false when it failed.
inline bool RunCommand(std::string const& command, std::string* output) {
    std::FILE* p = ::popen(command.c_str(), "r");
    if (p == nullptr)
        return false;
    output->clear();
    char buf[4096];
    std::size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, p)) > 0)
        output->append(buf, n);
    return ::pclose(p) == 0;
}

// Descriptors this process has open, to prove that failures leak none.
inline int OpenDescriptorCount() {
    int count = 0;
    if (DIR* d = ::opendir("/proc/self/fd")) {
        while (::readdir(d) != nullptr)
            ++count;
        ::closedir(d);
    }
    return count;
}

// Permission checks do not fail for root, so tests of refused access skip there.
inline bool RunsAsRoot() {
    return ::geteuid() == 0;
}

// Runs `f` in a child process that has given up root's rights (as the user and group
// "nobody", 65534) and returns its text; false when the rights cannot be dropped.
// Root ignores file permissions, so this is how refused access is seen under root.
inline bool RunUnprivileged(std::function<std::string()> const& f, std::string* result) {
    int fds[2];
    if (::pipe(fds) != 0)
        return false;
    std::fflush(nullptr);
    pid_t const child = ::fork();
    if (child < 0) {
        ::close(fds[0]);
        ::close(fds[1]);
        return false;
    }
    if (child == 0) {
        ::close(fds[0]);
        int status = 3;
        if (::setgroups(0, nullptr) == 0 && ::setgid(65534) == 0 && ::setuid(65534) == 0) {
            std::string const text = f();
            status = ::write(fds[1], text.data(), text.size()) == static_cast<ssize_t>(text.size())
                         ? 0
                         : 4;
        }
        ::_exit(status);
    }
    ::close(fds[1]);
    std::string text;
    char buf[256];
    ssize_t n;
    while ((n = ::read(fds[0], buf, sizeof buf)) > 0)
        text.append(buf, static_cast<std::size_t>(n));
    ::close(fds[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return false;
    *result = text;
    return true;
}

// What `f` reports about a refused permission: run directly, or without root's
// rights when running as root. False (the caller skips) when neither is possible.
inline bool RunWithoutPrivileges(std::function<std::string()> const& f, std::string* result) {
    if (!RunsAsRoot()) {
        *result = f();
        return true;
    }
    return RunUnprivileged(f, result);
}

// Runs `open(path)` on a path that names the write end of a pipe, closes the read
// end, then runs `write()`, which must fail with an exception and not end the
// process by SIGPIPE; the signal's disposition and the pending set are checked
// unchanged afterwards. Runs in a child process, so a fault shows as a failed test.
template <class Stream, class Open, class Write>
void ExpectBrokenPipeThrows(Open open, Write write) {
    EXPECT_EXIT(
        {
            int fds[2];
            if (::pipe(fds) != 0)
                std::_Exit(3);
            std::string const path = "/proc/self/fd/" + std::to_string(fds[1]);
            Stream* stream = open(path);
            ::close(fds[0]);
            int outcome = 1;
            try {
                write(*stream);
            } catch (lumo::base::CException const&) {
                outcome = 0;
            }
            struct sigaction now;
            sigaction(SIGPIPE, nullptr, &now);
            sigset_t pending;
            sigpending(&pending);
            if (now.sa_handler != SIG_DFL || sigismember(&pending, SIGPIPE))
                outcome = 2;
            delete stream;
            std::_Exit(outcome);
        },
        ::testing::ExitedWithCode(0), "");
}

} // namespace lumotest

// Stores in *result what `f` reports about a refused permission (see
// RunWithoutPrivileges), or skips the test when that cannot be seen.
#define LUMOTEST_WITHOUT_PRIVILEGES_OR_SKIP(f, result)                                             \
    if (!lumotest::RunWithoutPrivileges(f, result))                                                \
    GTEST_SKIP() << "running as root and unable to drop root's rights: "                           \
                    "refused permissions cannot be checked"

#endif
