// The records and commands exchanged with the host, byte for byte: little-endian, packed, every integer 32
// bits. Addresses are pointer-sized, so offsets behind one hold on the 32-bit target, where they are proved
// below.
#pragma once

#include <cstddef>

#include "image/dib.h"
#include "platform/window_handle.h"

#ifdef _WIN32
#define LUMAFOLD_CALL __stdcall
#else
#define LUMAFOLD_CALL
#endif

namespace lumafold {

inline constexpr std::uint32_t kInterfaceVersion = 0x201;
inline constexpr char kPluginName[] = "Lumafold";

enum class HostCommand : std::uint32_t {
    CreateTask = 1,
    AddFrame = 2,
    AddComment = 3,
    FinishTask = 4,
    CreateTestTask = 5,
    ChooseFiles = 7,
    LoadImage = 8,
    ShowHelp = 9,
    Caption = 10,
    ChooseColour = 11,
    Position = 13,
    ClipboardImage = 14,
};

#pragma pack(push, 1)
struct TaskRecord {
    std::uint32_t size = sizeof(TaskRecord);
    std::uint32_t version = kInterfaceVersion;
    WindowHandle owner;
    std::int32_t width, height; ///< the largest of all frames
    std::int32_t paletteBits;   ///< 1 to 8
    std::uint32_t zero1;
    Palette palette;
    std::uint32_t zero2;
    std::int32_t frameCount;
    std::uint8_t zero3[265];
};

struct ImageRecord {
    std::uint32_t size = sizeof(ImageRecord);
    std::uint32_t version = kInterfaceVersion;
    DibHandle image; ///< stays the plug-in's; the host copies it during the command
    std::uint32_t zero1;
    std::int32_t delay;
    std::uint8_t zero2[12];
    std::int32_t index;
    std::int32_t transparentIndex; ///< -1 for none
    std::uint8_t zero3[64];
};

struct ColourRecord {
    std::uint32_t size = sizeof(ColourRecord);
    std::uint32_t version = kInterfaceVersion;
    std::uint32_t* customColours; ///< the chooser's store of sixteen, owned by the plug-in
    std::uint32_t twentyFour;
    std::uint32_t before; ///< 0x00BBGGRR
    std::uint32_t colour; ///< in: current, out: chosen
    WindowHandle owner;
};

using HostCallback = std::int32_t(LUMAFOLD_CALL*)(TaskRecord* task, std::uint32_t command,
                                                  std::uint32_t wparam, std::intptr_t lparam);

struct HostContext {
    std::uint8_t unread1[8];
    HostCallback callback; ///< null is a fatal fault of the host
    std::uint8_t unread2[8];
    std::uint32_t capabilityFlags; ///< settings/settings.h names the bits
};

/// Variable in size: the host says how large it is, the notice fills the rest.
struct PluginParams {
    std::uint32_t size; ///< set by the host, kept
    std::uint32_t version;
    char name[261];
    char notice[1];
};
#pragma pack(pop)

static_assert(sizeof(TaskRecord) == 1069);
static_assert(offsetof(TaskRecord, owner) == 8 && offsetof(TaskRecord, width) == 12 &&
              offsetof(TaskRecord, height) == 16 && offsetof(TaskRecord, paletteBits) == 20 &&
              offsetof(TaskRecord, palette) == 28 && offsetof(TaskRecord, zero2) == 796 &&
              offsetof(TaskRecord, frameCount) == 800 && offsetof(TaskRecord, zero3) == 804);
static_assert(sizeof(ImageRecord) == 104);
static_assert(offsetof(ImageRecord, image) == 8 && offsetof(ImageRecord, delay) == 16 &&
              offsetof(ImageRecord, index) == 32 && offsetof(ImageRecord, transparentIndex) == 36);
static_assert(offsetof(PluginParams, name) == 8 && offsetof(PluginParams, notice) == 269);
static_assert(offsetof(ColourRecord, customColours) == 8 && offsetof(HostContext, callback) == 8);
static_assert(sizeof(void*) != 4 ||
              (sizeof(ColourRecord) == 28 && offsetof(ColourRecord, twentyFour) == 12 &&
               offsetof(ColourRecord, before) == 16 && offsetof(ColourRecord, colour) == 20 &&
               offsetof(ColourRecord, owner) == 24 && offsetof(HostContext, capabilityFlags) == 20));

} // namespace lumafold
