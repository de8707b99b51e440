#include "ui/session.h"

namespace lumafold {

DialogSession& Session() {
    static DialogSession session;
    return session;
}

} // namespace lumafold
