#pragma once
// The link to a machine's CNC through FANUC's FOCAS library, loaded at run time by name and never
// linked: it connects and reads the program directory, nothing else. Without the library the
// link only reports that it cannot open it.
#include <cstdint>
#include <string>

class QListWidget;

// The name under which the library is loaded (the system's search finds it). Messages call it
// FwLib32.dll on every platform.
#ifdef _WIN32
inline constexpr const char* FocasLibraryName = "FwLib32.dll";
#else
inline constexpr const char* FocasLibraryName = "libfwlib32.so";
#endif

// One link serves one choice of a machine: create, Connect, on true ReadPrograms, destroy.
class TFocus1Comm {
public:
    explicit TFocus1Comm(std::string LibraryName = FocasLibraryName);
    // Frees the handle, then the library.
    ~TFocus1Comm();
    TFocus1Comm(const TFocus1Comm&) = delete;
    TFocus1Comm& operator=(const TFocus1Comm&) = delete;

    // Loads the library, checks its three entry points and connects (time-out 5 seconds). Every
    // failure shows its box ("Unable to open FwLib32.dll", "<name> is not exported",
    // "Error:<code>") and gives false.
    bool Connect(const std::string& Host, std::uint16_t Port);
    // Reads the directory in one call and adds one line per program, "0012    (COMMENT)", to the
    // list. A failed read shows "Error:<code>" and adds nothing.
    void ReadPrograms(QListWidget* List);

    void* FLibrary = nullptr;  // the loaded library, null before
    std::uint16_t FHandle = 0; // the connection's handle, 0 before

private:
    void* Entry(const char* Name) const;

    std::string FLibraryName;
};

// A machine's port text as the link takes it: 0 (no link) when it is no integer or lies outside
// 0..65535.
std::uint16_t FocasPort(const std::string& Port);

// The library holds process-wide state on some platforms: when it exports cnc_startupprocess, the
// first Connect calls it once and keeps the library loaded until this call ends that state with
// cnc_exitprocess and lets the library go. Does nothing when nothing was started. The platform
// that loaded the library must still exist. The module calls it when it unloads.
void ExitFocasProcess();
