#include "hosts/cli/sheet_command.h"

#include "build/build_driver.h"
#include "codecs/files.h"
#include "codecs/png_writer.h"
#include "hosts/cli/build_options.h"
#include "hosts/cli/cannot_run.h"
#include "hosts/cli/contact_sheet.h"
#include "hosts/cli/failure.h"
#include "hosts/cli/load_pictures.h"
#include "hosts/cli/memory_limit.h"
#include "hosts/cli/names.h"
#include "hosts/cli/output.h"
#include "hosts/cli/recording_host.h"
#include "hosts/common/paths.h"
#include "hosts/common/processors.h"
#include "hosts/common/report.h"
#include "hosts/common/thread_pool.h"
#include "image/resample.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

constexpr std::size_t kFramesOfRow = 8;
// Of a transition's frames at the pictures' own size; with more, the pictures are shrunk first.
constexpr std::int64_t kMostFrameBytes = std::int64_t{128} << 20;

std::string RowName(std::int32_t row) { return std::to_string(row) + "  " + TransitionName(row); }

class SheetRun {
public:
    SheetRun(SheetOptions options, const Console& console)
        : options_(std::move(options)), console_(console), settings_(options_.settings) {
        settings_.TransitionTruecolour = 1;
        settings_.Supercompress = 0;
    }

    int Run() {
        CheckOutput();
        Load();
        const OwnedDib sheet = Draw();
        if (!sheet) throw Failure(kFailed, "not enough memory");
        for (const std::string& warning : options_.warnings)
            console_.Warn(warning);
        Write(sheet.Get());
        return 0;
    }

private:
    void CheckOutput() const {
        const std::string& output = options_.output;
        if (LowerSuffix(output) != "png") Mistake("-o " + output + ": a contact sheet is a .png file");
        for (const std::string& image : options_.images) {
            if (SameFile(output, image)) Mistake("-o " + output + ": would replace the picture " + image);
        }
        const std::string why = WhyNoFileCanStandAt(output);
        if (!why.empty()) throw Failure(kFailed, "-o " + output + ": " + why);
    }

    void Load() {
        PictureLoader loader(settings_.TransitionMattcolour, {}, console_.in);
        OwnedDib pictures[2];
        for (std::size_t i = 0; i < 2; ++i)
            pictures[i] = loader.Load(options_.images[i]);
        const std::int32_t percent = SheetPercent(pictures);
        const GapValues gap{0, static_cast<std::int32_t>(settings_.TransitionPause),
                            static_cast<std::int32_t>(settings_.TransitionDelay)};
        for (std::size_t i = 0; i < 2; ++i) {
            OwnedDib picture = percent < 100 ? ShrinkPicture(*pictures[i], percent) : std::move(pictures[i]);
            if (!picture || !list_.Add(std::move(picture), options_.images[i], gap))
                throw Failure(kFailed, "not enough memory");
        }
        SetTransition(1, kRowNone);
    }

    /// How far the pictures are shrunk: into a cell where all transitions are shown, or where the frames of
    /// the one would take too much.
    std::int32_t SheetPercent(const OwnedDib (&pictures)[2]) const {
        std::int32_t width = 1, height = 1;
        for (const OwnedDib& picture : pictures) {
            width = std::max(width, picture->biWidth);
            height = std::max(height, picture->biHeight);
        }
        // Divided instead of multiplied: the number of frames can be as large as it likes.
        if (options_.transition && FrameCount(*options_.transition, settings_, {width, height}) <=
                                       kMostFrameBytes / 3 / width / height) {
            return 100;
        }
        return FitPercent(width, height, kSheetCellWidth, kSheetCellHeight);
    }

    void SetTransition(std::int32_t line, std::int32_t row) {
        ImageEntry entry;
        if (!list_.Read(line, entry)) return;
        entry.transition = row;
        list_.Write(line, entry);
    }

    OwnedDib Draw() {
        Progress progress(console_.err, StyleFor(console_.err, options_.talk));
        if (!options_.transition) return DrawAll(progress);
        return LayOutSheet(Cells(*options_.transition, kMostSheetCells, progress), kSheetColumns);
    }

    OwnedDib DrawAll(Progress& progress) {
        std::vector<SheetCell> all;
        Progress unheard(console_.err, ProgressStyle::Silent);
        progress.Caption("Drawing");
        for (std::int32_t row = 0; row < kTransitionCount; ++row) {
            progress.Position(row + 1, kTransitionCount);
            std::vector<SheetCell> cells = Cells(row, kFramesOfRow, unheard);
            for (SheetCell& cell : cells)
                cell.label.clear();
            cells.resize(kFramesOfRow);
            cells[0].label = RowName(row) + "  (" + std::to_string(frames_) + " frames)";
            std::move(cells.begin(), cells.end(), std::back_inserter(all));
        }
        return LayOutSheet(all, kFramesOfRow);
    }

    /// The frames of one transition and the picture it leads to.
    std::vector<SheetCell> Cells(std::int32_t row, std::size_t most, Progress& progress) {
        SetTransition(0, row);
        BuildEstimate estimate;
        if (!EstimateBuild(list_, TaskKind::Build, settings_, pool_.Workers(), estimate))
            throw Failure(kFailed, "not enough memory");
        std::string why = WhyCannotRun(row, settings_, estimate.width, estimate.height);
        if (!why.empty()) throw Failure(kFailed, why);
        why = WhyTooLarge(estimate, CommandBytes(list_, estimate, kSheetNeed), memoryLimit_);
        if (!why.empty())
            throw Failure(kFailed, std::string(TransitionName(row)) + " " + why + " (--memory-limit)");
        SheetCells frames(most);
        RecordingHost host(kHostTakesTrueColour, progress, console_.err, frames);
        std::vector<SheetCell> cells;
        if (BuildAnimation(
                {list_, 0, host.Context(), TaskKind::Build, settings_, host, pool_, memoryLimit_}) != 0) {
            frames_ = host.Frames();
            cells = frames.Take();
        }
        progress.Clear();
        if (cells.empty()) throw Failure(kFailed, std::string(TransitionName(row)) + ": not enough memory");
        return cells;
    }

    void Write(DibHandle sheet) const {
        std::string error;
        const std::vector<std::uint8_t> file = EncodePng(sheet, error);
        if (file.empty() || !WriteFileSafely(options_.output, file, error))
            throw Failure(kFailed, "-o " + options_.output + ": " + error);
        if (options_.talk == Talk::Quiet) return;
        std::int32_t width = 0, height = 0;
        DibQuery(sheet, &width, &height, nullptr, nullptr);
        const std::string shown =
            options_.transition ? RowName(*options_.transition) + ", " + std::to_string(frames_) + " frames"
                                : std::to_string(kTransitionCount) + " transitions";
        console_.out << "wrote " << Printable(options_.output) << ": " << shown << ", " << width << 'x'
                     << height << ", " << SizeText(file.size()) << '\n';
    }

    static constexpr std::int32_t kRowNone = 14;

    const SheetOptions options_;
    const Console& console_;
    PluginSettings settings_; // in force
    const std::uint64_t memoryLimit_ = options_.memoryLimit ? *options_.memoryLimit : UsualMemoryLimit();
    const ThreadPool pool_{UsableProcessors()};
    MemoryList list_{GapValues{}};
    std::size_t frames_ = 0; // of the transition drawn last
};

} // namespace

int RunSheet(std::span<const std::string> words, const Console& console) {
    return SheetRun(ParseSheet(words), console).Run();
}

} // namespace lumafold
