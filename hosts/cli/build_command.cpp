#include "hosts/cli/build_command.h"

#include "build/build_driver.h"
#include "codecs/files.h"
#include "codecs/png_writer.h"
#include "hosts/cli/build_options.h"
#include "hosts/cli/contact_sheet.h"
#include "hosts/cli/interrupt.h"
#include "hosts/cli/load_pictures.h"
#include "hosts/cli/memory_limit.h"
#include "hosts/cli/output.h"
#include "hosts/common/report.h"

namespace lumafold {
namespace {

class BuildRun {
public:
    BuildRun(std::ostream& out, std::ostream& err) : out_(out), err_(err) {}

    int Run(std::span<const std::string> words) {
        WordsError mistake;
        if (!ParseBuild(words, options_, mistake)) return Fail(mistake.status, mistake.text);
        std::string error;
        if (!options_.output.empty()) {
            const auto kind = ClassifyOutput(options_.output, error);
            if (!kind) return Fail(2, error);
            kind_ = *kind;
        }
        if (!options_.sheet.empty() && LowerSuffix(options_.sheet) != ".png") {
            return Fail(2, "--sheet " + options_.sheet + ": a contact sheet is a .png file");
        }
        if (options_.sheet == options_.output && !options_.sheet.empty()) {
            return Fail(2, "--sheet " + options_.sheet + ": the animation goes there");
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
        settings_ = options_.settings;
        ApplyCapabilities(settings_, CapabilityFlags(kind_));
        if (settings_.TransitionTruecolour != options_.settings.TransitionTruecolour) {
            Remark("a GIF holds no true colour, so the frames get a palette");
        }
        // With both, changed pixels that are black would let the frame before shine through.
        if (settings_.TransitionTruecolour != 0 && !options_.supercompressAsked) settings_.Supercompress = 0;
    }

    // What can be known before any work is done.
    int CheckFirst() {
        if (options_.estimate) return 0;
        if (const std::string why = WhyNotWritable(options_.output, kind_); !why.empty()) {
            return Fail(1, "-o " + options_.output + ": " + why);
        }
        if (options_.sheet.empty()) return 0;
        const std::string why = WhyNoFileCanStandAt(options_.sheet);
        return why.empty() ? 0 : Fail(1, "--sheet " + options_.sheet + ": " + why);
    }

    int Load(MemoryList& list) {
        PictureLoader loader(settings_.TransitionMattcolour);
        std::string error;
        for (const ImageArgument& image : options_.images) {
            OwnedDib picture = loader.Load(image.path, error);
            if (!picture) return Fail(1, error);
            if (!list.Add(std::move(picture), image.path, image.gap)) {
                return Fail(1, image.path + ": not enough memory");
            }
        }
        return 0;
    }

    int Build(MemoryList& list) {
        const TaskKind kind = options_.testBuild ? TaskKind::Test : TaskKind::Build;
        const std::uint64_t limit = options_.memoryLimit.value_or(UsualMemoryLimit());
        BuildEstimate estimate;
        if (EstimateBuild(list, kind, settings_, estimate)) {
            const std::string why = WhyTooLarge(estimate, limit);
            if (!why.empty()) return Fail(1, "the animation " + why + " (--memory-limit)");
        }
        Progress progress(err_, StyleFor(err_, options_.quiet));
        RecordingHost host(CapabilityFlags(kind_), progress, err_);
        const BuildRequest request{list, 0, host.Context(), kind, settings_, host, Runner(), limit};
        const bool built = BuildAnimation(request) != 0 && host.Complete();
        progress.Clear();
        if (!built) return 1; // the engine has said why
        return options_.estimate ? Estimate(host) : Write(host);
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
        if (options_.quiet) return 0;
        out_ << "wrote " << options_.output << ": " << AnimationText(host.Result(), bytes)
             << (options_.sheet.empty() ? "" : ", contact sheet " + options_.sheet) << '\n';
        return 0;
    }

    int Estimate(const RecordingHost& host) {
        std::string error;
        std::uint64_t bytes = 0;
        if (!MeasureOutput(kind_, host, bytes, error)) return Fail(1, error);
        out_ << "nothing written: " << AnimationText(host.Result(), bytes) << '\n';
        return 0;
    }

    std::ostream& out_;
    std::ostream& err_;
    BuildOptions options_;
    PluginSettings settings_; // in force
    std::vector<std::string> remarks_;
    OutputKind kind_ = OutputKind::Gif;
};

} // namespace

int RunBuild(std::span<const std::string> words, std::ostream& out, std::ostream& err) {
    return BuildRun(out, err).Run(words);
}

} // namespace lumafold
