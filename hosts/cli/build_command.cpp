#include "hosts/cli/build_command.h"

#include <chrono>
#include <cmath>

#include <nlohmann/json.hpp>

#include "build/build_driver.h"
#include "codecs/files.h"
#include "codecs/frame_changes.h"
#include "codecs/png_writer.h"
#include "hosts/cli/build_options.h"
#include "hosts/cli/built_frames.h"
#include "hosts/cli/cannot_run.h"
#include "hosts/cli/failure.h"
#include "hosts/cli/interrupt.h"
#include "hosts/cli/load_pictures.h"
#include "hosts/cli/memory_limit.h"
#include "hosts/cli/picture_order.h"
#include "hosts/cli/process_memory.h"
#include "hosts/cli/standard_streams.h"
#include "hosts/common/paths.h"
#include "hosts/common/processors.h"
#include "hosts/common/report.h"
#include "hosts/common/thread_pool.h"

namespace lumafold {
namespace {

using Clock = std::chrono::steady_clock;

class BuildRun {
public:
    BuildRun(BuildOptions options, const Console& console)
        : options_(std::move(options)), console_(console),
          kind_(KindOfOutput(options_.output, options_.format)),
          pool_(static_cast<int>(options_.jobs ? *options_.jobs : UsableProcessors())) {}

    int Run() {
        CheckNames();
        SettleSettings();
        CheckWritable();
        MemoryList list(options_.defaults);
        Load(list);
        CheckRuns(list);
        // What is wrong with a picture or a setting should stand alone, so these come after.
        for (const std::string& warning : options_.warnings)
            console_.Warn(warning);
        for (const std::string& remark : remarks_)
            Remark(remark);
        return Build(list);
    }

private:
    bool WritesStream() const { return options_.output == kStandardStream; }
    /// What is asked for besides the animation goes where that does not.
    std::ostream& Out() const { return WritesStream() ? console_.err : console_.out; }

    void Remark(const std::string& text) const {
        if (options_.talk != Talk::Quiet) console_.Say(text);
    }

    void CheckNames() const {
        const std::string& sheet = options_.sheet;
        if (!sheet.empty() && LowerSuffix(sheet) != "png")
            Mistake("--sheet " + sheet + ": a contact sheet is a .png file");
        if (WritesStream() && IsTerminal(console_.out))
            Mistake("-o -: a terminal shows no pictures, send them to a file or a program");
        if (!sheet.empty() && !options_.output.empty() && !WritesStream() && SameFile(sheet, options_.output))
            Mistake("--sheet " + sheet + ": the animation goes there");
        for (const ImageArgument& image : options_.images) {
            if (!sheet.empty() && SameFile(sheet, image.path))
                Mistake("--sheet " + sheet + ": is one of the pictures");
            if (!options_.estimate && WouldReplace(options_.output, kind_, image.path))
                Mistake("-o " + options_.output + ": would replace the picture " + image.path);
        }
        for (const std::string& path : options_.alsoRead) {
            if (!sheet.empty() && SameFile(sheet, path))
                Mistake("--sheet " + sheet + ": would replace what is read from there");
            if (!options_.estimate && WouldReplace(options_.output, kind_, path))
                Mistake("-o " + options_.output + ": would replace what is read from there");
        }
    }

    void SettleSettings() {
        settings_ = options_.settings;
        ApplyCapabilities(settings_, CapabilityFlags(kind_));
        if (settings_.TransitionTruecolour != options_.settings.TransitionTruecolour)
            remarks_.emplace_back("a GIF holds no true colour, so the frames get a palette");
        const bool reducesLittle = kind_ == OutputKind::Webp || kind_ == OutputKind::Y4m;
        if (reducesLittle && !options_.paletteAsked) settings_.TransitionTruecolour = 1;
        if (options_.quality && kind_ != OutputKind::Webp)
            remarks_.emplace_back("--quality is for WebP files alone");
        if (options_.effort && kind_ != OutputKind::Apng && kind_ != OutputKind::Mng)
            remarks_.emplace_back("--effort is for PNG and MNG files alone");
        if (options_.plays.times > 1 && kind_ == OutputKind::Y4m)
            remarks_.emplace_back("a film is played once");
        // With both, changed pixels that are black would let the frame before shine through.
        if (settings_.TransitionTruecolour != 0 && !options_.supercompressAsked) settings_.Supercompress = 0;
    }

    // What can be known before any work is done.
    void CheckWritable() const {
        if (options_.estimate) return;
        if (const std::string why = WhyNotWritable(options_.output, kind_); !why.empty())
            throw Failure(kFailed, "-o " + options_.output + ": " + why);
        if (options_.sheet.empty()) return;
        const std::string why = WhyNoFileCanStandAt(options_.sheet);
        if (!why.empty()) throw Failure(kFailed, "--sheet " + options_.sheet + ": " + why);
    }

    void Load(MemoryList& list) {
        PictureLoader loader(settings_.TransitionMattcolour, options_.size, console_.in);
        std::vector<std::int32_t> lines(options_.images.size(), -1); // where each picture stands first
        for (const ShownPicture& shown : ShownPictures(options_)) {
            const std::string& path = options_.images[shown.image].path;
            ImageEntry earlier;
            const bool again = list.Read(lines[shown.image], earlier);
            OwnedDib picture = again ? loader.Copy(earlier.image, path) : loader.Load(path);
            if (!again) lines[shown.image] = list.Count();
            if (!list.Add(std::move(picture), path, shown.gap))
                throw Failure(kFailed, path + ": not enough memory");
        }
    }

    TaskKind Task() const { return options_.testBuild ? TaskKind::Test : TaskKind::Build; }

    void CheckRuns(MemoryList& list) {
        BuildEstimate estimate;
        if (!EstimateBuild(list, Task(), settings_, pool_.Workers(), estimate)) return;
        std::string why = WhyCannotRun(list, settings_, estimate.width, estimate.height);
        if (!why.empty()) throw Failure(kFailed, why);
        RemarkOnSize(estimate);
        std::optional<double> packed;
        if (settings_.TransitionTruecolour != 0) packed = PackedBytes(list);
        const TakerNeed taker = NeedOf(kind_, options_.quality, packed, pool_.Workers(), estimate.frames);
        why = WhyTooLarge(estimate, CommandBytes(list, estimate, taker), memoryLimit_);
        if (!why.empty()) throw Failure(kFailed, "the animation " + why + " (--memory-limit)");
    }

    void RemarkOnSize(const BuildEstimate& estimate) {
        constexpr std::int32_t kLarge = 1920;
        const PictureSize canvas{estimate.width, estimate.height};
        if (options_.size.kind != SizeRequest::Kind::Keep || std::max(canvas.width, canvas.height) <= kLarge)
            return;
        const PictureSize less = SizeFor({SizeRequest::Kind::AtMost, {kLarge, kLarge}}, canvas);
        const double part = static_cast<double>(less.width) * less.height / canvas.width / canvas.height;
        if (part > 0.99) return;
        remarks_.push_back("the pictures are up to " + std::to_string(canvas.width) + "x" +
                           std::to_string(canvas.height) + "; --max-size " + std::to_string(kLarge) +
                           " would make it " + std::to_string(less.width) + "x" +
                           std::to_string(less.height) + " and save about " +
                           std::to_string(std::lround(100 * (1 - part))) + " % of time and size");
    }

    int Build(MemoryList& list) {
        Progress progress(console_.err, StyleFor(console_.err, options_.talk));
        BuiltFrames frames({kind_, options_.estimate ? "" : options_.output, console_.out, pool_,
                            options_.quality, options_.effort},
                           options_);
        RecordingHost host(CapabilityFlags(kind_), progress, console_.err, frames);
        const bool built =
            BuildAnimation({list, 0, host.Context(), Task(), settings_, host, pool_, memoryLimit_}) != 0 &&
            host.Complete();
        progress.Clear();
        if (Interrupted()) return kInterruptedStatus;
        if (!host.Fault().empty()) throw Failure(kFailed, NameBefore() + host.Fault());
        if (!built) return kFailed; // the engine has said why
        if (const std::size_t held = frames.Held(); held > 0) RemarkOnDelays(held);
        if (const std::size_t cut = frames.Cut(); cut > 0) {
            Remark(Standing(cut) + "for " + DurationText(LongestDelay(kind_)) +
                   " instead of longer, which this kind of file cannot say");
        }
        return Write(host, frames);
    }

    static std::string Standing(std::size_t frames) {
        return std::to_string(frames) + (frames == 1 ? " frame stands " : " frames stand ");
    }

    void RemarkOnDelays(std::size_t held) const {
        Remark(Standing(held) +
               "for 0.02 s instead of less, which browsers would make 0.1 s of, and those after it for the "
               "less (--exact-delays keeps all as they are)");
    }

    /// What is put before the reasons of an output that does not name files itself.
    std::string NameBefore() const {
        return options_.estimate || WritesStream() || kind_ == OutputKind::Folder ? ""
                                                                                  : options_.output + ": ";
    }

    int Write(const RecordingHost& host, BuiltFrames& frames) {
        std::string error = "not enough memory";
        std::vector<std::uint8_t> sheet;
        if (!options_.sheet.empty()) {
            const OwnedDib picture = frames.Sheet();
            if (picture) sheet = EncodePng(picture.Get(), error);
            if (sheet.empty()) throw Failure(kFailed, "--sheet " + options_.sheet + ": " + error);
        }
        ReturnFreedMemory(); // of the frames, before a file takes as much
        const std::uint64_t bytes = FileOrError([&] { return frames.Finish(host); }, error);
        if (Interrupted()) return kInterruptedStatus;
        if (!error.empty()) throw Failure(kFailed, NameBefore() + error);
        if (!sheet.empty() && !WriteFileSafely(options_.sheet, sheet, error))
            throw Failure(kFailed, "--sheet " + options_.sheet + ": " + error);
        Report(host, frames, bytes);
        return 0;
    }

    void Report(const RecordingHost& host, const BuiltFrames& frames, std::uint64_t bytes) const {
        const AnimationFacts& facts = host.Facts();
        const std::string text = std::to_string(host.Frames()) + " frames, " + std::to_string(facts.width) +
                                 "x" + std::to_string(facts.height) + ", " + frames.Text() + ", " +
                                 SizeText(bytes);
        if (options_.json) {
            Out() << JsonReport(host, bytes) << std::endl;
        } else if (options_.estimate) {
            Out() << "nothing written: " << text << '\n';
        } else if (options_.talk != Talk::Quiet) {
            Out() << Printable("wrote " + (WritesStream() ? "to the standard output" : options_.output) +
                               ": " + text +
                               (options_.sheet.empty() ? "" : ", contact sheet " + options_.sheet))
                  << '\n';
        }
    }

    std::string JsonReport(const RecordingHost& host, std::uint64_t bytes) const {
        nlohmann::ordered_json line;
        if (!options_.estimate) line["file"] = options_.output;
        line["frames"] = host.Frames();
        line["width"] = host.Facts().width;
        line["height"] = host.Facts().height;
        line["size"] = bytes;
        line["seconds"] = std::chrono::duration<double>(Clock::now() - begun_).count();
        line["peakMemory"] = PeakMemory();
        return line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    }

    const Clock::time_point begun_ = Clock::now();
    const BuildOptions options_;
    const Console& console_;
    const OutputKind kind_;
    PluginSettings settings_; // in force
    const ThreadPool pool_;
    const std::uint64_t memoryLimit_ = options_.memoryLimit ? *options_.memoryLimit : UsualMemoryLimit();
    std::vector<std::string> remarks_;
};

} // namespace

int RunBuild(std::span<const std::string> words, const Console& console) {
    return BuildRun(ParseBuild(words, console.in), console).Run();
}

} // namespace lumafold
