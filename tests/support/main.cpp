#include <cstdio>

#include <gtest/gtest.h>

#include "platform/window_handle.h"

// A message box would wait for a click that nobody makes.
static void PrintMessage(lumafold::WindowHandle, const char* text) {
    std::fprintf(stderr, "message: %s\n", text);
}

int main(int argc, char** argv) {
    lumafold::SetMessageHook(PrintMessage);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
