#include "settings/list_file.h"

#include <cstring>

namespace lumafold {

bool ListFileReader::Next(char (&path)[kListLineBytes]) {
    while (lines_.Next(path)) {
        path[std::strcspn(path, "\r\n")] = 0;
        if (path[0] != 0 && FileExists(path)) return true;
    }
    return false;
}

bool ListFileWriter::Add(const char* path) {
    if (FileExists(path)) lines_.Line({path});
    return !lines_.HasFailed();
}

} // namespace lumafold
