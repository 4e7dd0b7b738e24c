// The comment of a section as a line of the program: in parentheses and upper case.
#include "job/Job.h"

#include "common/Convert.h"

std::string TdlgJob::WrapComment(const std::string& Text) {
    if (Text.empty())
        return {};
    // ASCII letters only; line breaks (CR LF) and other bytes stay as they are.
    return "(" + common::upperCase(Text) + ")";
}
