#include "ui/module.h"

namespace lumafold {
namespace {

HINSTANCE moduleInstance = nullptr;

} // namespace

HINSTANCE ModuleInstance() { return moduleInstance; }
void SetModuleInstance(HINSTANCE instance) { moduleInstance = instance; }

} // namespace lumafold
