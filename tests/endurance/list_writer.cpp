// Writes an image list: list_writer LIST PATH... - for tests that end a program while it does.
#include <cstdio>

#include "platform/files.h"
#include "settings/list_file.h"

int main(int count, char** words) {
    if (count < 2) return 2;
    lumafold::ListFileWriter writer;
    for (int i = 2; i < count; ++i) {
        if (!writer.Add(words[i])) return 1;
    }
    if (writer.Write(words[1])) return 0;
    std::fprintf(stderr, "list_writer: cannot write %s\n", words[1]);
    return 1;
}
