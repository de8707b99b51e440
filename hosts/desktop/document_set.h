// The open animations, in the order of the list, one of them the current one.
#pragma once

#include "hosts/desktop/document.h"

namespace lumafold {

/// Whoever shows them.
class DocumentWatcher {
public:
    /// A document is about to go: nobody may hold on to it.
    virtual void BeforeClosing() = 0;
    /// Another one is the current one, or the first came or the last went.
    virtual void CurrentChanged() = 0;
    /// The current one has another name, or was saved.
    virtual void StateChanged() = 0;

protected:
    ~DocumentWatcher() = default;
};

class DocumentSet {
public:
    explicit DocumentSet(DocumentWatcher& watcher) : watcher_(watcher) {}

    std::size_t Count() const { return documents_.size(); }
    std::size_t CurrentIndex() const { return current_; }
    /// Null where none is open.
    Document* Current() { return current_ < Count() ? documents_[current_].get() : nullptr; }
    const Document* Current() const { return current_ < Count() ? documents_[current_].get() : nullptr; }
    Document& At(std::size_t index) { return *documents_.at(index); }
    std::vector<const Document*> All() const;
    /// The files among them.
    std::vector<std::string> Paths() const;

    /// Becomes the current one.
    void Add(std::unique_ptr<Document> document);
    /// Nothing happens for an index past the end, here and below.
    void Select(std::size_t index);
    /// The next one, or with -1 the one before; past the end it goes round.
    void SelectNeighbour(int by);
    /// The current one.
    void MarkSaved(const std::string& path, std::uint64_t bytes);
    /// Without asking.
    void Close(std::size_t index);
    void CloseTest();

    /// "Animation 3" for the third animation built. One that is not added takes no number.
    std::string NextName() const { return "Animation " + std::to_string(built_ + 1); }

private:
    DocumentWatcher& watcher_;
    std::vector<std::unique_ptr<Document>> documents_;
    std::size_t current_ = 0, built_ = 0;
};

} // namespace lumafold
