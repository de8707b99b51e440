// What a page's worker does, one order at a time: it keeps pictures, builds animations of them, shows their
// frames and packs them into files. Orders and answers are JSON, pixels and files are bytes.
#pragma once

#include <memory>

#include <nlohmann/json.hpp>

#include "codecs/frame_screens.h"
#include "hosts/web/page_host.h"
#include "hosts/web/picture_store.h"

namespace lumafold {

class Workshop {
public:
    using Json = nlohmann::json;
    using Bytes = std::vector<std::uint8_t>;

    explicit Workshop(TellProgress tell) : tell_(std::move(tell)) {}

    /// Does one order and tells what came of it; "error" in it says in one line why nothing did. The orders:
    ///
    ///   {"do": "tables"}
    ///   {"do": "read settings", "text"}            "values"
    ///   {"do": "write settings", "values"}         "text"
    ///   {"do": "add", "number", "matte", "fit": {"mode", "width", "height"}}
    ///                                              of the bytes that stand in Input(): "width", "height" of
    ///                                              the file; Output() has the fitted picture's pixels, which
    ///                                              are "shownWidth" x "shownHeight"
    ///   {"do": "remove", "number"}
    ///   {"do": "build", "kind", "settings", "entries": [{"picture", "transition", "pause", "delay"}],
    ///    "fullColour", "lengthPercent"}            "width", "height", "delays", "palette", "colours"
    ///   {"do": "frame", "index"}                   Output() has the pixels that are seen then
    ///   {"do": "pack", "quality"}                           Output() has the file
    ///
    /// "fullColour" leaves out every reduction of colours; "lengthPercent" scales the settings that are
    /// measured in pixels, for a build of smaller pictures that should look like the large one.
    std::string Do(const std::string& order);

    Bytes& Input() { return input_; }
    const Bytes& Output() const { return output_; }

private:
    Json Answer(const nlohmann::json& order);
    Json Add(const nlohmann::json& order);
    Json Build(const nlohmann::json& order);
    Json Frame(std::size_t index);
    Json Pack(std::optional<int> quality);

    TellProgress tell_;
    Bytes input_, output_;
    PictureStore pictures_;
    std::string kind_;
    std::optional<Animation> animation_;
    std::unique_ptr<FrameScreens> screens_; ///< of animation_, made when a frame is first asked for
};

} // namespace lumafold
