#include "hosts/desktop/document_set.h"

#include <algorithm>

namespace lumafold {

std::vector<const Document*> DocumentSet::All() const {
    std::vector<const Document*> all;
    for (const auto& document : documents_)
        all.push_back(document.get());
    return all;
}

std::vector<std::string> DocumentSet::Paths() const {
    std::vector<std::string> paths;
    for (const auto& document : documents_) {
        if (!document->Path().empty()) paths.push_back(document->Path());
    }
    return paths;
}

void DocumentSet::Add(std::unique_ptr<Document> document) {
    if (document->GetOrigin() == Origin::Build) ++built_;
    documents_.push_back(std::move(document));
    Select(Count() - 1);
}

void DocumentSet::Select(std::size_t index) {
    if (index >= Count()) return;
    if (index != current_ && Current() != nullptr) Current()->Player().Pause();
    current_ = index;
    watcher_.CurrentChanged();
}

void DocumentSet::SelectNeighbour(int by) {
    if (Count() > 0) Select((current_ + Count() + static_cast<std::size_t>(by)) % Count());
}

void DocumentSet::MarkSaved(const std::string& path, std::uint64_t bytes) {
    if (Current() == nullptr) return;
    Current()->MarkSaved(path, bytes);
    watcher_.StateChanged();
}

void DocumentSet::Close(std::size_t index) {
    if (index >= Count()) return;
    watcher_.BeforeClosing();
    documents_.erase(documents_.begin() + static_cast<std::ptrdiff_t>(index));
    if (current_ > index || (current_ == Count() && current_ > 0)) --current_;
    watcher_.CurrentChanged();
}

void DocumentSet::CloseTest() {
    const auto test = std::find_if(documents_.begin(), documents_.end(), [](const auto& document) {
        return document->GetOrigin() == Origin::Test;
    });
    Close(static_cast<std::size_t>(test - documents_.begin()));
}

} // namespace lumafold
