#include "hosts/cli/build_command.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <unistd.h>

#include "build/build_driver.h"
#include "hosts/cli/build_options.h"
#include "hosts/cli/contact_sheet.h"
#include "hosts/cli/interrupt.h"
#include "hosts/cli/output.h"
#include "hosts/codecs/decode.h"
#include "hosts/codecs/files.h"
#include "hosts/codecs/png_writer.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

constexpr std::uint64_t kMostPixels = std::uint64_t{256} << 20;

// Computing a palette and supercompression are still to come; until then their settings are off and the
// person who builds is told.
bool TurnOffUnfinishedSteps(PluginSettings& settings) {
    const bool palette = settings.TransitionTruecolour == 0 && settings.TransitionCustompalette != 0;
    const bool any = palette || settings.Supercompress != 0;
    settings.TransitionCustompalette = 0;
    settings.Supercompress = 0;
    return any;
}

std::string SizeText(std::uint64_t bytes) {
    char text[32];
    if (bytes < 1000) return std::to_string(bytes) + " bytes";
    const bool mega = bytes >= 1000000;
    std::snprintf(text, sizeof(text), mega ? "%.1f MB" : "%.1f kB",
                  static_cast<double>(bytes) / (mega ? 1e6 : 1e3));
    return text;
}

class BuildRun {
public:
    BuildRun(std::ostream& out, std::ostream& err) : out_(out), err_(err) {}

    int Run(std::span<const std::string> words) {
        std::string error;
        if (!ParseBuild(words, options_, error)) return Fail(2, error);
        const auto kind = ClassifyOutput(options_.output, error);
        if (!kind) return Fail(2, error);
        kind_ = *kind;
        if (!options_.sheet.empty() && !options_.sheet.ends_with(".png")) {
            return Fail(2, "--sheet " + options_.sheet + ": a contact sheet is a .png file");
        }
        for (const std::string& warning : options_.warnings)
            err_ << "lumafold: warning: " << warning << '\n';
        PutSettingsInForce();
        if (const int status = CheckFirst(); status != 0) return status;
        MemoryList list(options_.defaults);
        if (const int status = Load(list); status != 0) return status;
        for (const std::string& remark : remarks_)
            err_ << "lumafold: " << remark << '\n';
        return Build(list);
    }

private:
    int Fail(int status, const std::string& text) {
        err_ << "lumafold: " << text << '\n';
        return status;
    }

    // Held back until the pictures are read: what is wrong with one of those should stand alone.
    void Remark(const std::string& text) {
        if (!options_.quiet) remarks_.push_back(text);
    }

    void PutSettingsInForce() {
        pluginSettings = options_.settings;
        ApplyCapabilities(pluginSettings, CapabilityFlags(kind_));
        if (pluginSettings.TransitionTruecolour != options_.settings.TransitionTruecolour) {
            Remark("a GIF holds no true colour, so the frames get a palette");
        }
        if (TurnOffUnfinishedSteps(pluginSettings)) {
            Remark("built with the fixed palette and without supercompression; computing a palette and "
                   "supercompression are not available yet");
        }
    }

    // What can be known before any work is done.
    int CheckFirst() {
        if (const std::string why = WhyNotWritable(options_.output, kind_); !why.empty()) {
            return Fail(1, "-o " + options_.output + ": " + why);
        }
        if (options_.sheet.empty()) return 0;
        const std::string why = WhyNoFileCanStandAt(options_.sheet);
        return why.empty() ? 0 : Fail(1, "--sheet " + options_.sheet + ": " + why);
    }

    int Load(MemoryList& list) {
        std::uint64_t pixelsLeft = kMostPixels;
        for (const ImageArgument& image : options_.images) {
            DecodedPicture decoded =
                DecodePictureFile(image.path, pluginSettings.TransitionMattcolour, pixelsLeft);
            std::int32_t width = 0, height = 0;
            if (!decoded.picture) return Fail(1, image.path + ": " + decoded.error);
            DibQuery(decoded.picture.Get(), &width, &height, nullptr, nullptr);
            pixelsLeft -=
                std::min(pixelsLeft, static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height));
            if (!list.Add(std::move(decoded.picture), image.path, image.gap)) {
                return Fail(1, image.path + ": not enough memory");
            }
        }
        return 0;
    }

    ProgressStyle Style() const {
        if (options_.quiet) return ProgressStyle::Silent;
        return &err_ == &std::cerr && isatty(STDERR_FILENO) != 0 ? ProgressStyle::Bar : ProgressStyle::Lines;
    }

    int Build(MemoryList& list) {
        Progress progress(err_, Style());
        const RecordingHost host(CapabilityFlags(kind_), progress, err_);
        const TaskKind kind = options_.testBuild ? TaskKind::Test : TaskKind::Build;
        const bool built = BuildAnimation(list, 0, host.Context(), kind) != 0 && host.Complete();
        progress.Clear();
        if (!built) return 1; // the engine has said why
        return Write(host);
    }

    int Write(const RecordingHost& host) {
        std::string error = "not enough memory";
        std::vector<std::uint8_t> sheet;
        if (!options_.sheet.empty()) {
            const OwnedDib picture = AnimationSheet(host.Result());
            if (picture) sheet = EncodePng(picture.Get(), error);
            if (sheet.empty()) return Fail(1, "--sheet " + options_.sheet + ": " + error);
        }
        std::uint64_t bytes = 0;
        const bool written = WriteOutput(options_.output, kind_, host, bytes, error);
        if (Interrupted()) return kInterruptedStatus;
        if (!written) return Fail(1, error);
        if (!sheet.empty() && !WriteFileSafely(options_.sheet, sheet, error)) {
            return Fail(1, "--sheet " + options_.sheet + ": " + error);
        }
        if (!options_.quiet) Report(host.Result(), bytes);
        return 0;
    }

    void Report(const Animation& animation, std::uint64_t bytes) {
        out_ << "wrote " << options_.output << ": " << animation.frames.size() << " frames, "
             << animation.width << 'x' << animation.height << ", " << SizeText(bytes)
             << (options_.sheet.empty() ? "" : ", contact sheet " + options_.sheet) << '\n';
    }

    std::ostream& out_;
    std::ostream& err_;
    BuildOptions options_;
    std::vector<std::string> remarks_;
    OutputKind kind_ = OutputKind::Gif;
};

} // namespace

int RunBuild(std::span<const std::string> words, std::ostream& out, std::ostream& err) {
    return BuildRun(out, err).Run(words);
}

} // namespace lumafold
