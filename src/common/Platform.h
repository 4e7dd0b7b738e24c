#pragma once
// The operating-system seam: clock, sleep, dynamic libraries, files, the shell and the executable's
// directory. Tests use a scripted implementation with a fake clock.
#include <cstdint>
#include <string>

namespace common {

class Platform {
public:
    virtual ~Platform() = default;
    // 32-bit millisecond counter that wraps, as the classic tick count.
    virtual std::uint32_t tickCount() = 0;
    virtual void sleep(std::uint32_t milliseconds) = 0;
    // A null handle means the library could not be loaded.
    virtual void* loadLibrary(const std::string& path) = 0;
    virtual void* librarySymbol(void* library, const std::string& name) = 0;
    virtual void freeLibrary(void* library) = 0;
    // Returns false when the copy failed; `failIfExists` refuses to overwrite.
    virtual bool copyFile(const std::string& from, const std::string& to, bool failIfExists) = 0;
    virtual bool deleteFile(const std::string& path) = 0;
    // The shell verbs "open" and "find"; returns false when nothing could be started.
    virtual bool shellExecute(const std::string& verb, const std::string& file,
                              const std::string& parameters, const std::string& directory) = 0;
    // Directory of the running executable, with a trailing separator.
    virtual std::string executableDirectory() = 0;
};

// The real implementation over POSIX.
class RealPlatform : public Platform {
public:
    std::uint32_t tickCount() override;
    void sleep(std::uint32_t milliseconds) override;
    void* loadLibrary(const std::string& path) override;
    void* librarySymbol(void* library, const std::string& name) override;
    void freeLibrary(void* library) override;
    bool copyFile(const std::string& from, const std::string& to, bool failIfExists) override;
    bool deleteFile(const std::string& path) override;
    bool shellExecute(const std::string& verb, const std::string& file,
                      const std::string& parameters, const std::string& directory) override;
    std::string executableDirectory() override;
};

} // namespace common
