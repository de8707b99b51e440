// The open animations, one card each, at the left of the window.
#pragma once

#include "hosts/desktop/document.h"
#include "hosts/desktop/painting.h"
#include "hosts/desktop/view.h"

namespace lumafold {

class DocumentList : public View<DocumentList> {
public:
    static constexpr wchar_t kClassName[] = L"LumafoldHostDocuments";
    static constexpr int kWidth = 204;
    /// The owner is sent these with the document's index: a card was clicked, or its cross.
    static constexpr UINT kChosen = WM_APP + 2, kClosed = WM_APP + 3;

    ~DocumentList() { Destroy(); }

    bool Make(HWND parent);
    void Show(std::vector<const Document*> documents, std::size_t current);

    LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam);
    void Paint(HDC context, const RECT& area);

private:
    void PaintCard(HDC context, const Document& document, const RECT& card, bool current) const;
    void PaintThumbnail(HDC context, const Thumbnail& thumbnail, const RECT& room) const;
    RECT CrossOf(const RECT& card) const;
    void Click(LPARAM lparam);
    void ScrollTo(int y);
    RECT CardAt(std::size_t index) const;

    std::vector<const Document*> documents_;
    std::size_t current_ = 0;
    int scroll_ = 0;
};

} // namespace lumafold
