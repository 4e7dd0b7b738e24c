// A stand-in for the CNC's FOCAS library: it connects to nothing, answers from the environment
// and logs the calls that arrive.
//   FOCAS_STANDIN_CONNECT   code of cnc_allclibhndl3 (default 0; on 0 the handle is 77)
//   FOCAS_STANDIN_READ      code of cnc_rdprogdir2 (default 0)
//   FOCAS_STANDIN_PROGRAMS  the directory: "number=comment" records separated by "|"; the number
//                           fills the record's first 32 bits, the comment bytes 8 to 59 as far
//                           as it goes (a longer one leaves no zero byte)
//   FOCAS_STANDIN_COUNT     the count reported (default: the number of records)
// Built with STANDIN_BARE it exports only cnc_freelibhndl of the library's functions.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

std::string& callLog() {
    static std::string log;
    return log;
}

void note(const std::string& call) { callLog() += call + "\n"; }

} // namespace

extern "C" {

const char* standin_log() { return callLog().c_str(); }
void standin_clear() { callLog().clear(); }

short cnc_freelibhndl(unsigned short handle) {
    note("free " + std::to_string(handle));
    return 0;
}

#ifndef STANDIN_BARE
static short envNumber(const char* name, short fallback) {
    const char* value = std::getenv(name);
    return value && *value ? static_cast<short>(std::atoi(value)) : fallback;
}

short cnc_startupprocess(long level, const char* logFile) {
    note("startup " + std::to_string(level) + " " + logFile);
    return 0;
}

short cnc_exitprocess() {
    note("exit");
    return 0;
}

short cnc_allclibhndl3(const char* host, unsigned short port, long timeout,
                       unsigned short* handle) {
    note("connect " + std::string(host) + " " + std::to_string(port) + " " +
         std::to_string(timeout));
    const short code = envNumber("FOCAS_STANDIN_CONNECT", 0);
    if (code == 0)
        *handle = 77;
    return code;
}

short cnc_rdprogdir2(unsigned short handle, short type, short* top, short* num, void* buffer) {
    note("read " + std::to_string(handle) + " type " + std::to_string(type) + " top " +
         std::to_string(*top) + " num " + std::to_string(*num));
    const short code = envNumber("FOCAS_STANDIN_READ", 0);
    if (code != 0)
        return code;
    const char* programs = std::getenv("FOCAS_STANDIN_PROGRAMS");
    std::string rest = programs ? programs : "";
    auto* record = static_cast<unsigned char*>(buffer);
    short records = 0;
    while (!rest.empty() && records < *num) {
        const auto bar = rest.find('|');
        const std::string entry = rest.substr(0, bar);
        rest = bar == std::string::npos ? "" : rest.substr(bar + 1);
        const auto equals = entry.find('=');
        const std::int32_t number = std::atoi(entry.substr(0, equals).c_str());
        const std::string comment = equals == std::string::npos ? "" : entry.substr(equals + 1);
        std::memcpy(record, &number, 4); // little-endian on the platforms built for
        std::memcpy(record + 8, comment.data(), std::min<std::size_t>(comment.size(), 52));
        record += 60;
        ++records;
    }
    *num = envNumber("FOCAS_STANDIN_COUNT", records);
    return 0;
}
#endif
}
