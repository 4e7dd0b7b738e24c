#pragma once
// The records that cross the boundary between the host and the module.
#include "common/HostApplication.h"
#include "common/StringList.h"

#include <array>
#include <cstdint>
#include <string>

// The record passed to the job wizard: the job, its template and directories, and switches. The
// module works on its own copy and never changes the host's.
struct TJobWizardInfo {
    void* HostModule = nullptr; // library offering "GetJobInfo"; null: nothing is reported back
    std::int32_t TemplateID = 0;
    std::int32_t HostTag = 0; // copied to TAutomationInfo on the wizard's path
    std::int32_t JobNumber = 0;
    std::string HostText1;
    std::string HostText2;
    std::string MachineText;    // "FANUC Robocut" is reported when empty
    std::string PalletNumber;   // decimal text; goes into statements as text
    std::string LocalDirectory; // keeps the master program and the included files
    std::string InputDirectory;
    std::string OutputDirectory; // may be empty; preferred start of the save dialog
    std::string ReservedText1;
    std::string ReservedText2;
    std::string ReservedText3;
    std::uint8_t HostFlag1 = 0;
    bool UseTemplateFixture = false;
    bool AllowSkip = false;
    bool AllowSkipDown = false;
    bool Unattended = false;
    std::uint8_t HostFlag2 = 0;
    common::MessageGate* MessageGate = nullptr; // host's check box gating a message
};

// The record the module fills and hands to the host's "GetJobInfo": the job's program file and
// file list. The host must copy what it keeps.
struct TAutomationInfo {
    std::int32_t HostTag = 0;
    std::int32_t JobNumber = 0;
    std::string HostText1;
    std::string HostText2;
    std::string MachineText;
    std::string PalletNumber;
    std::string CommandFile;
    std::string AutomationText1;
    std::string CommandText;
    std::string FileList; // included files joined by vertical bars
    std::string AutomationText2;
    bool AutomationFlag1 = false;
    bool AutomationFlag2 = false;
    std::uint8_t HostFlag1 = 0;
    std::uint8_t HostFlag2 = 0;
};

// The host's entry point that receives a job's report.
using TGetJobInfo = void (*)(TAutomationInfo* info);

// A further library the host tells the module about. Only libraries of the kind
// "Template Enhancement" are taken, as plug-ins of the template editor; their entry points are
// looked up in the module handle by name (see template/TemplatePlugins.h for their calling form).
struct TPluginEntry {
    void* ModuleHandle = nullptr; // the loaded library
    std::string Kind;
};

// Point arrays of a fixture, kept in the wizard; indexed by workpiece.
struct TPointInfo {
    std::string PartNumber;
    long double Z = 0;
    std::array<long double, 100> X{};
    std::array<long double, 100> Y{};
};
