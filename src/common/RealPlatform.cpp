#include "common/Platform.h"

#include <dlfcn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>

namespace common {

std::uint32_t RealPlatform::tickCount() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    const auto ms = static_cast<std::uint64_t>(ts.tv_sec) * 1000u +
                    static_cast<std::uint64_t>(ts.tv_nsec) / 1000000u;
    return static_cast<std::uint32_t>(ms);
}

void RealPlatform::sleep(std::uint32_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void* RealPlatform::loadLibrary(const std::string& path) {
    return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void* RealPlatform::librarySymbol(void* library, const std::string& name) {
    return library ? dlsym(library, name.c_str()) : nullptr;
}

void RealPlatform::freeLibrary(void* library) {
    if (library)
        dlclose(library);
}

bool RealPlatform::copyFile(const std::string& from, const std::string& to, bool failIfExists) {
    std::error_code ec;
    const auto options = failIfExists ? std::filesystem::copy_options::none
                                      : std::filesystem::copy_options::overwrite_existing;
    return std::filesystem::copy_file(from, to, options, ec) && !ec;
}

bool RealPlatform::deleteFile(const std::string& path) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec))
        return false;
    return std::filesystem::remove(path, ec) && !ec;
}

bool RealPlatform::shellExecute(const std::string& verb, const std::string& file,
                                const std::string& parameters, const std::string& directory) {
    // "open" on the text editor opens `parameters` in the desktop's editor; "find" opens the file
    // manager at `directory`. Both hand the path to xdg-open without waiting for it.
    std::string target;
    if (verb == "find")
        target = directory.empty() ? file : directory;
    else
        target = parameters.empty() ? file : parameters;
    if (target.empty())
        return false;
    const pid_t pid = fork();
    if (pid < 0)
        return false;
    if (pid == 0) {
        if (fork() == 0) {
            execlp("xdg-open", "xdg-open", target.c_str(), static_cast<char*>(nullptr));
        }
        _exit(0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return true;
}

std::string RealPlatform::executableDirectory() {
    std::error_code ec;
    auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    if (ec)
        return "./";
    auto dir = exe.parent_path().string();
    if (dir.empty() || dir.back() != '/')
        dir += '/';
    return dir;
}

} // namespace common
