#include "support/TestSupport.h"

#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

namespace testsupport {

TempDir::TempDir() {
    std::random_device rd;
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string id = std::to_string(rd()) + std::to_string(attempt);
        auto candidate = std::filesystem::temp_directory_path() / ("quorvel-test-" + id);
        if (std::filesystem::create_directory(candidate)) {
            path_ = candidate;
            // The server run: every database of the folder lives on the test server, under
            // schemas of this folder's own.
            if (onTestServer())
                writeFile(file("server.cell"),
                          "server = " + std::string(std::getenv("QUORVEL_TEST_SERVER")) +
                              "\nname = t" + id + "\n");
            return;
        }
    }
    throw std::runtime_error("cannot create a temporary directory");
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
}

bool onTestServer() {
    const char* server = std::getenv("QUORVEL_TEST_SERVER");
    return server && *server;
}

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out)
        throw std::runtime_error("cannot write " + path);
    out << text;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("cannot read " + path);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

} // namespace testsupport
