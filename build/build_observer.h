// What a build tells the person who waits for it. The engine shows nothing of its own accord: the plug-in has
// message boxes and cursors, other hosts print a line or do nothing.
#pragma once

#include "platform/non_copyable.h"
#include "resources/texts/strings.h"

namespace lumafold {

/// Why a build was given up.
enum class BuildFailure {
    Memory, ///< memory, an entry or a frame that could not be had, an effect that cannot run
    Task,   ///< the host made no task
    Frame,  ///< the host took not every frame
};

/// The English text; the plug-in takes what has a number from its string table.
constexpr const char* TextOf(BuildFailure failure) {
    constexpr const char* kTexts[] = {LUMAFOLD_TEXT_MEMORY_ERROR, LUMAFOLD_TEXT_TASK_ERROR,
                                      LUMAFOLD_TEXT_FRAME_ERROR};
    return kTexts[static_cast<int>(failure)];
}

class BuildObserver : NonCopyable {
public:
    virtual ~BuildObserver() = default;

    /// The build begins, and ends with everything put back: the time of the wait cursor.
    virtual void Begin() {}
    virtual void End() {}
    /// Called once at most, and before everything is put back.
    virtual void Fail(BuildFailure failure) = 0;
};

} // namespace lumafold
