#include "hosts/web/workshop.h"

#include <cstring>

#include "build/build_driver.h"
#include "codecs/delays.h"
#include "hosts/common/memory_list.h"
#include "hosts/common/report.h"
#include "hosts/web/kinds.h"
#include "hosts/web/tables.h"

namespace lumafold {
namespace {

using Json = Workshop::Json;

/// Of the 2 GB that the module can have, what a build may hold: the animation and its file come beside it.
constexpr std::uint64_t kMostBytes = std::uint64_t{5} << 28;

Json Error(const std::string& text) { return {{"error", text}}; }

SizeRequest SizeOf(const nlohmann::json& fit, PixelValue matte) {
    using Kind = SizeRequest::Kind;
    const std::string mode = fit.at("mode");
    const Fit shape = mode == "cover" ? Fit::Cover : mode == "stretch" ? Fit::Stretch : Fit::Contain;
    const Kind kind = mode == "own" ? Kind::Keep : mode == "most" ? Kind::AtMost : Kind::Exact;
    return {kind, {fit.value("width", 1), fit.value("height", 1)}, shape, 100, matte};
}

/// Numbers whose meaning is told in pixels are lengths; their own ranges hold for what comes of them.
bool IsLength(const SettingDescriptor& setting) {
    return setting.kind == SettingKind::Number &&
           std::string_view(setting.meaning).find("pixel") != std::string_view::npos;
}

void ScaleLengths(PluginSettings& settings, std::uint32_t percent) {
    for (const SettingDescriptor& setting : SettingDescriptors()) {
        if (!IsLength(setting)) continue;
        std::uint32_t& value = settings.*setting.value;
        const std::uint64_t scaled = (std::uint64_t{value} * percent + 50) / 100;
        value = static_cast<std::uint32_t>(std::max<std::uint64_t>(scaled, std::min(value, setting.minimum)));
    }
}

PluginSettings SettingsFor(const nlohmann::json& order, const OutputKindRow& kind) {
    PluginSettings settings = SettingsFromJson(order.at("settings"));
    ScaleLengths(settings, order.value("lengthPercent", 100U));
    ApplyCapabilities(settings, CapabilityFlagsOf(kind));
    if (order.value("fullColour", false)) settings.TransitionTruecolour = 1;
    // With both, changed pixels that are black would let the frame before shine through.
    if (settings.TransitionTruecolour != 0) settings.Supercompress = 0;
    return settings;
}

GapValues GapOf(const nlohmann::json& entry, const PluginSettings& settings) {
    return {entry.value("transition", static_cast<std::int32_t>(settings.TransitionType)),
            entry.value("pause", static_cast<std::int32_t>(settings.TransitionPause)),
            entry.value("delay", static_cast<std::int32_t>(settings.TransitionDelay))};
}

void HoldShortFrames(Animation& animation) {
    HeldDelays held;
    for (const AnimationFrame& frame : animation.frames)
        held.Add(frame.delay);
    const std::vector<std::int32_t>& delays = held.Settle();
    for (std::size_t i = 0; i < delays.size(); ++i)
        animation.frames[i].delay = delays[i];
}

Json Description(const Animation& animation) {
    Json delays = Json::array(), palette = Json::array();
    for (const AnimationFrame& frame : animation.frames)
        delays.push_back(frame.delay);
    const bool indexed = animation.frames.front().image->biBitCount <= 8;
    for (std::size_t i = 0; indexed && i < std::size_t{1} << animation.paletteBits; ++i) {
        const Rgb colour = animation.palette[i];
        palette.push_back(MakeColour(colour.red, colour.green, colour.blue));
    }
    return {{"width", animation.width},
            {"height", animation.height},
            {"delays", delays},
            {"palette", palette},
            {"colours", ColoursText(animation)}};
}

} // namespace

std::string Workshop::Do(const std::string& order) {
    output_.clear();
    try {
        return Answer(nlohmann::json::parse(order)).dump();
    } catch (const std::bad_alloc&) {
        return Error("not enough memory").dump();
    } catch (const nlohmann::json::exception&) {
        return Error("the engine does not understand this page").dump();
    } catch (const std::exception& error) {
        return Error(error.what()).dump();
    }
}

Json Workshop::Answer(const nlohmann::json& order) {
    const std::string what = order.at("do");
    if (what == "tables") return {{"tables", Json::parse(TablesJson())}};
    if (what == "read settings") return {{"values", SettingsToJson(SettingsFromFileText(order.at("text")))}};
    if (what == "write settings") return {{"text", SettingsFileText(SettingsFromJson(order.at("values")))}};
    if (what == "add") return Add(order);
    if (what == "build") return Build(order);
    if (what == "frame") return Frame(order.at("index"));
    if (what == "pack") {
        return Pack(order.contains("quality") ? std::optional<int>(order["quality"]) : std::nullopt);
    }
    if (what == "remove") {
        pictures_.Remove(order.at("number"));
        return Json::object();
    }
    return Error("there is no such order: " + what);
}

Json Workshop::Add(const nlohmann::json& order) {
    std::string error;
    const StoredPicture* picture =
        pictures_.Add(order.at("number"), input_, SizeOf(order.at("fit"), order.at("matte")), error);
    input_ = {};
    if (picture == nullptr) return Error(error);
    if (order.value("show", false)) output_ = PixelsOf(*picture->dib);
    return {{"width", picture->fileWidth},
            {"height", picture->fileHeight},
            {"shownWidth", picture->dib->biWidth},
            {"shownHeight", picture->dib->biHeight}};
}

Json Workshop::Build(const nlohmann::json& order) {
    const OutputKindRow* kind = FindOutputKind(order.at("kind").get<std::string>());
    if (kind == nullptr) return Error("there is no such kind of file");
    screens_.reset();
    animation_.reset();
    kind_ = kind->id;
    const PluginSettings settings = SettingsFor(order, *kind);
    MemoryList list(GapOf(nlohmann::json::object(), settings));
    for (const nlohmann::json& entry : order.at("entries")) {
        const StoredPicture* picture = pictures_.Find(entry.at("picture"));
        OwnedDib copy = picture != nullptr ? DibCopy(*picture->dib) : OwnedDib();
        if (!copy || !list.Add(std::move(copy), "", GapOf(entry, settings)))
            return Error("not enough memory");
    }
    PageHost host(CapabilityFlagsOf(*kind), tell_);
    const bool built =
        BuildAnimation({list, 0, host.Context(), TaskKind::Build, settings, host, Runner(), kMostBytes}) != 0;
    animation_ = host.Take();
    if (!built || !animation_) return Error(host.Failure().empty() ? "the build failed" : host.Failure());
    HoldShortFrames(*animation_);
    return Description(*animation_);
}

Json Workshop::Frame(std::size_t index) {
    if (!animation_ || index >= animation_->frames.size()) return Error("there is no such frame");
    if (!screens_) screens_ = std::make_unique<FrameScreens>(*animation_);
    const ScreenPixels& pixels = screens_->At(index);
    output_.resize(pixels.size() * 4);
    std::uint8_t* out = output_.data();
    for (const PixelValue pixel : pixels) {
        // From the lowest byte on red, green and blue, as a canvas has them; and clear or opaque.
        const std::uint32_t bytes = pixel == kNoPixel ? 0 : pixel | 0xFF000000U;
        std::memcpy(out, &bytes, sizeof bytes);
        out += sizeof bytes;
    }
    return {{"width", animation_->width}, {"height", animation_->height}};
}

Json Workshop::Pack(std::optional<int> quality) {
    const OutputKindRow* kind = FindOutputKind(kind_);
    if (!animation_ || kind == nullptr) return Error("nothing was built");
    tell_("", 0, 0);
    const FrameProgress goOn = [this](std::size_t frame, std::size_t frames) {
        tell_("", static_cast<std::int32_t>(frame), static_cast<std::int32_t>(frames));
        return true;
    };
    std::string error;
    output_ = kind->encode(*animation_, {quality, goOn}, error);
    return output_.empty() ? Error(error) : Json{{"bytes", output_.size()}};
}

} // namespace lumafold
