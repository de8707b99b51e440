#include "settings/line_reader.h"

namespace lumafold {

bool LineReader::Next(char (&line)[kLineBytes]) {
    std::size_t length = 0;
    int letter = 0;
    while (length < kLineBytes - 1 && letter != '\n') {
        letter = Take();
        if (letter == kEnd) break;
        if (letter == '\r' && Peek() == '\n') letter = Take();
        line[length++] = static_cast<char>(letter);
    }
    line[length] = 0;
    return length != 0;
}

int LineReader::Peek() {
    if (at_ == filled_) {
        at_ = 0;
        filled_ = file_.Read(buffer_, sizeof(buffer_));
    }
    return filled_ == 0 ? kEnd : buffer_[at_];
}

int LineReader::Take() {
    const int letter = Peek();
    if (letter != kEnd) ++at_;
    return letter;
}

} // namespace lumafold
