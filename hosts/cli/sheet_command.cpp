#include "hosts/cli/sheet_command.h"

#include "build/build_driver.h"
#include "codecs/files.h"
#include "codecs/png_writer.h"
#include "hosts/cli/build_options.h"
#include "hosts/cli/contact_sheet.h"
#include "hosts/cli/load_pictures.h"
#include "hosts/cli/memory_limit.h"
#include "hosts/cli/names.h"
#include "hosts/cli/output.h"
#include "hosts/cli/recording_host.h"
#include "hosts/common/report.h"
#include "image/resample.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

constexpr std::size_t kFramesOfRow = 8;
// Every frame is there twice, once with the driver and once with the host.
constexpr std::int64_t kMostFrameBytes = std::int64_t{128} << 20;

std::string RowName(std::int32_t row) { return std::to_string(row) + "  " + TransitionName(row); }

class SheetRun {
public:
    SheetRun(std::ostream& out, std::ostream& err) : out_(out), err_(err) {}

    int Run(std::span<const std::string> words) {
        WordsError mistake;
        if (!ParseSheet(words, options_, mistake)) return Fail(mistake.status, mistake.text);
        if (LowerSuffix(options_.output) != ".png") {
            return Fail(2, "-o " + options_.output + ": a contact sheet is a .png file");
        }
        for (const std::string& warning : options_.warnings)
            err_ << "lumafold: warning: " << warning << '\n';
        settings_ = options_.settings;
        settings_.TransitionTruecolour = 1;
        settings_.Supercompress = 0;
        if (const std::string why = WhyNoFileCanStandAt(options_.output); !why.empty()) {
            return Fail(1, "-o " + options_.output + ": " + why);
        }
        std::string error;
        if (!Load(error)) return Fail(1, error);
        const OwnedDib sheet = Draw(error);
        return sheet ? Write(sheet.Get()) : Fail(1, error);
    }

private:
    int Fail(int status, const std::string& text) {
        err_ << "lumafold: " << text << '\n';
        return status;
    }

    bool Load(std::string& error) {
        PictureLoader loader(settings_.TransitionMattcolour);
        OwnedDib pictures[2];
        std::int32_t width = 1, height = 1;
        for (std::size_t i = 0; i < 2; ++i) {
            pictures[i] = loader.Load(options_.images[i], error);
            if (!pictures[i]) return false;
            width = std::max(width, pictures[i]->biWidth);
            height = std::max(height, pictures[i]->biHeight);
        }
        if (!options_.transition || FrameBytes(width, height) > kMostFrameBytes) {
            const std::int32_t percent = FitPercent(width, height, kSheetCellWidth, kSheetCellHeight);
            for (OwnedDib& picture : pictures)
                picture = ShrinkPicture(*picture, percent);
        }
        error = "not enough memory";
        const GapValues gap{0, static_cast<std::int32_t>(settings_.TransitionPause),
                            static_cast<std::int32_t>(settings_.TransitionDelay)};
        for (std::size_t i = 0; i < 2; ++i) {
            if (!pictures[i] || !list_.Add(std::move(pictures[i]), options_.images[i], gap)) return false;
        }
        return SetTransition(1, kRowNone);
    }

    std::int64_t FrameBytes(std::int32_t width, std::int32_t height) const {
        return FrameCount(*options_.transition, settings_, {width, height}) * 3 * width * height;
    }

    bool SetTransition(std::int32_t line, std::int32_t row) {
        ImageEntry entry;
        if (!list_.Read(line, entry)) return false;
        entry.transition = row;
        return list_.Write(line, entry);
    }

    OwnedDib Draw(std::string& error) {
        Progress progress(err_, StyleFor(err_, options_.quiet));
        return options_.transition ? DrawOne(*options_.transition, progress, error)
                                   : DrawAll(progress, error);
    }

    OwnedDib DrawOne(std::int32_t row, Progress& progress, std::string& error) {
        const std::vector<SheetCell> cells = Cells(row, kMostSheetCells, progress, error);
        return LayOutSheet(cells, kSheetColumns);
    }

    OwnedDib DrawAll(Progress& progress, std::string& error) {
        std::vector<SheetCell> all;
        Progress unheard(err_, ProgressStyle::Silent);
        progress.Caption("Drawing");
        for (std::int32_t row = 0; row < kTransitionCount; ++row) {
            progress.Position(row + 1, kTransitionCount);
            std::vector<SheetCell> cells = Cells(row, kFramesOfRow, unheard, error);
            if (cells.empty()) return {};
            for (SheetCell& cell : cells)
                cell.label.clear();
            cells.resize(kFramesOfRow);
            cells[0].label = RowName(row) + "  (" + std::to_string(frames_) + " frames)";
            std::move(cells.begin(), cells.end(), std::back_inserter(all));
        }
        error = "not enough memory";
        return LayOutSheet(all, kFramesOfRow);
    }

    /// The frames of one transition and the picture it leads to; none, with `error`, when it failed.
    std::vector<SheetCell> Cells(std::int32_t row, std::size_t most, Progress& progress, std::string& error) {
        error = "the transition \"" + std::string(TransitionName(row)) + "\" (row " + std::to_string(row) +
                ") cannot be built with these settings";
        RecordingHost host(kHostTakesTrueColour, progress, err_);
        const BuildRequest request{list_,     0,    host.Context(), TaskKind::Build,
                                   settings_, host, Runner(),       UsualMemoryLimit()};
        if (!SetTransition(0, row) || BuildAnimation(request) == 0) return {};
        frames_ = host.Result().frames.size();
        progress.Clear();
        return AnimationCells(host.Result(), most);
    }

    int Write(DibHandle sheet) {
        std::string error;
        const std::vector<std::uint8_t> file = EncodePng(sheet, error);
        if (file.empty() || !WriteFileSafely(options_.output, file, error)) {
            return Fail(1, "-o " + options_.output + ": " + error);
        }
        if (options_.quiet) return 0;
        std::int32_t width = 0, height = 0;
        DibQuery(sheet, &width, &height, nullptr, nullptr);
        out_ << "wrote " << options_.output << ": "
             << (options_.transition
                     ? RowName(*options_.transition) + ", " + std::to_string(frames_) + " frames"
                     : std::to_string(kTransitionCount) + " transitions")
             << ", " << width << 'x' << height << ", " << SizeText(file.size()) << '\n';
        return 0;
    }

    static constexpr std::int32_t kRowNone = 14;

    std::ostream& out_;
    std::ostream& err_;
    SheetOptions options_;
    PluginSettings settings_; // in force
    MemoryList list_{GapValues{}};
    std::size_t frames_ = 0; // of the transition drawn last
};

} // namespace

int RunSheet(std::span<const std::string> words, std::ostream& out, std::ostream& err) {
    return SheetRun(out, err).Run(words);
}

} // namespace lumafold
