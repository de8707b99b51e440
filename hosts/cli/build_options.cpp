#include "hosts/cli/build_options.h"

#include <algorithm>
#include <charconv>

#include "codecs/picture_kinds.h"
#include "hosts/cli/failure.h"
#include "hosts/cli/names.h"
#include "hosts/cli/picture_names.h"
#include "hosts/cli/setting_words.h"
#include "hosts/cli/standard_streams.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

// What --transition, --pause and --delay said so far; the settings fill the rest when all words are read.
struct GapWords {
    std::optional<std::int32_t> transition, pause, delay;
};

constexpr std::uint32_t kAnyNumber = UINT32_MAX, kMostHundredths = INT32_MAX;
// What a GIF's block for it holds; a WebP's is one less.
constexpr std::uint32_t kMostPlays = 65535, kMostJobs = 256;

std::int32_t TakeTransition(const std::string& value) {
    if (const auto row = FindTransition(value)) return *row;
    if (!value.empty() && value.find_first_not_of("-0123456789") == std::string::npos) {
        Mistake("--transition " + value + ": there is no such row, the table has 0 to " +
                std::to_string(kTransitionCount - 1));
    }
    Mistake("--transition " + value + ": no transition has this name" + DidYouMeanTransition(value));
}

void DescribeTransition(CommandWords& words, const std::string& meaning,
                        std::function<void(std::int32_t)> take) {
    words.Value("--transition", "NAME|ROW", meaning + " (\"lumafold transitions\" lists them)",
                [take = std::move(take)](const std::string& value) { take(TakeTransition(value)); });
}

void DescribeMemoryLimit(CommandWords& words, std::optional<std::uint64_t>& limit) {
    words.Number("--memory-limit", "MB", {1, kAnyNumber, "megabytes"},
                 "build nothing that needs more memory than this; without it, half of the machine's",
                 [&limit](std::uint32_t value) { limit = std::uint64_t{value} * 1'000'000; });
}

void DescribeTalk(CommandWords& words, Talk& talk) {
    words.Switch("-q,--quiet", "no progress, no remarks", [&talk] { talk = Talk::Quiet; });
    words.Switch("-v,--verbose", "a line for each phase where no terminal can show how far it is",
                 [&talk] { talk = Talk::Verbose; });
}

class BuildReader {
public:
    BuildReader(BuildOptions& options, std::istream& standardInput)
        : options_(options), standardInput_(standardInput) {
        DescribeOutput();
        DescribeGaps();
        DescribeOrder();
        DescribeSize();
        words_.Group("Colours and settings");
        settings_.DescribeColours(words_);
        settings_.DescribeMatte(words_);
        settings_.DescribeAll(words_);
        DescribeRun();
        words_.Others([this](const std::string& word) { TakePictures(word); });
        words_.Footer(
            "After -- all words are pictures. Of options that say different things about a setting the last "
            "one holds.\nExit status: 0 when everything was written, 1 when the build failed, 2 for a "
            "mistake on the command line.");
    }

    void Read(std::span<const std::string> words) {
        words_.Read(words);
        Check();
        options_.settings = settings_.Settle();
        if (!settings_.File().empty()) options_.alsoRead.push_back(settings_.File());
        options_.size.matte = options_.settings.TransitionMattcolour;
        options_.supercompressAsked = settings_.AskedForSupercompression();
        options_.paletteAsked = settings_.AskedForPalette();
        for (std::size_t i = 0; i < gaps_.size(); ++i)
            options_.images[i].gap = Filled(gaps_[i]);
        options_.defaults = Filled(gap_);
        options_.warnings = std::move(settings_.Warnings());
        // With one image they fill the gap that leads back to it; else they were meant to stand in front.
        if (!gapAfterImages_.empty() && options_.images.size() > 1) {
            options_.warnings.push_back(gapAfterImages_ + " stands after the last image and changes nothing");
        }
    }

private:
    void DescribeOutput() {
        words_.Group("Output");
        words_.Value("-o,--output", "OUTPUT",
                     "a file, whose suffix tells its kind (" + OutputSuffixes() +
                         "), FOLDER/ for one bitmap a frame and task.json, or - for the standard output",
                     [this](const std::string& value) { TakePath("-o", value, options_.output); });
        words_.Value("--format", FormatNames("|"), "the kind of file, whatever its name",
                     [this](const std::string& value) { TakeFormat(value); });
#if LUMAFOLD_WEBP
        words_.Number("--quality", "N", {0, 100, ""},
                      "let a WebP lose what is hardly seen; without it, it loses nothing",
                      [this](std::uint32_t value) { options_.quality = static_cast<int>(value); });
#endif
        words_.Number("--effort", "N", {1, 12, ""}, "how hard to pack PNG and MNG files, the smallest last",
                      [this](std::uint32_t value) { options_.effort = static_cast<int>(value); });
        words_.Value("--sheet", "FILE.png", "also a contact sheet of the finished frames",
                     [this](const std::string& value) { TakePath("--sheet", value, options_.sheet); });
        words_.Switch(
            "--estimate",
            "build all of it and say how large the file would be, but write nothing; -o is then needed for "
            "its kind alone, which is .gif without it",
            [this] { options_.estimate = true; });
        words_.Switch("--json",
                      "say what was written in one line of JSON: file, frames, size, seconds, peak memory",
                      [this] { options_.json = true; });
    }

    void DescribeGaps() {
        words_.Group("From picture to picture, each for the pictures after it");
        DescribeTransition(words_, "what leads from the pictures after it to the next",
                           [this](std::int32_t row) {
                               gap_.transition = row;
                               gapAfterImages_ = "--transition";
                           });
        const auto time = [&](const std::string& name, std::optional<std::int32_t> GapWords::*target,
                              std::uint32_t PluginSettings::*setting, const char* meaning) {
            words_.Number(name, "N", {0, kMostHundredths, "hundredths of a second"}, meaning,
                          [=, this](std::uint32_t value) {
                              gap_.*target = static_cast<std::int32_t>(value);
                              gapAfterImages_ = name;
                              settings_.WarnWhenOutside(name, value, DescriptorOf(setting));
                          });
        };
        time("--pause", &GapWords::pause, &PluginSettings::TransitionPause,
             "how long each picture after it stands still, in hundredths of a second");
        time("--delay", &GapWords::delay, &PluginSettings::TransitionDelay,
             "how long each frame of the transition stands, in hundredths of a second");
    }

    void DescribeOrder() {
        words_.Group("Order and end");
        words_.Number("--loop", "N", {1, kMostPlays, ""}, "play it N times; without it, for ever",
                      [this](std::uint32_t value) { options_.plays.times = value; });
        words_.Switch("--once", "play it one time, and end on the last picture",
                      [this] { options_.plays.endsOnLast = true; });
        words_.Switch("--reverse", "the pictures from the last to the first",
                      [this] { options_.order = PictureOrder::Reverse; });
        words_.Switch("--ping-pong", "the pictures forth and back", [this] { options_.pingPong = true; });
        words_.Switch(
            "--exact-delays",
            "keep frames that stand shorter than 0.02 s; browsers show those for 0.1 s, so in files they get "
            "0.02 s, which the frames after them give up",
            [this] { options_.delays = DelayRule::Exact; });
    }

    void DescribeSize() {
        words_.Group("Size of the pictures");
        words_.Value("--size", "WxH", "every picture at this size, in pixels",
                     [this](const std::string& value) {
                         TakeSizeKind("--size", SizeRequest::Kind::Exact);
                         options_.size.size = TakeSize("--size", value);
                     });
        words_.Value(
            "--fit", "contain|cover|stretch",
            "how a picture of other proportions comes to --size: whole with the matte beside it, filling it "
            "and cut, or out of proportion; without it, whole",
            [this](const std::string& value) { TakeFit(value); });
        words_.Value("--max-size", "WxH|N",
                     "larger pictures made to lie within it, in proportion; N is both sides",
                     [this](const std::string& value) {
                         TakeSizeKind("--max-size", SizeRequest::Kind::AtMost);
                         options_.size.size = TakeSize("--max-size", value);
                     });
        words_.Value("--scale", "PERCENT", "every picture at so much of its own size (above 0, to 1000)",
                     [this](const std::string& value) {
                         TakeSizeKind("--scale", SizeRequest::Kind::Scale);
                         options_.size.percent = TakePercent(value);
                     });
    }

    void TakeSizeKind(const std::string& name, SizeRequest::Kind kind) {
        if (options_.size.kind != SizeRequest::Kind::Keep && options_.size.kind != kind)
            Mistake(name + " and " + sizeOption_ + " do not go together");
        options_.size.kind = kind;
        sizeOption_ = name;
    }

    /// One number is both sides where the picture keeps its proportions.
    static PictureSize TakeSize(const std::string& name, const std::string& value) {
        const bool square = name == "--max-size" && value.find('x') == std::string::npos;
        const std::string both = square ? value + "x" + value : value;
        const std::size_t by = std::min(both.find('x'), both.size());
        const std::uint32_t width = ParseNumber(both.substr(0, by)).value_or(0);
        const std::uint32_t height = ParseNumber(both.substr(std::min(by + 1, both.size()))).value_or(0);
        if (std::min(width, height) < 1 ||
            std::max(width, height) > static_cast<std::uint32_t>(kLargestSide)) {
            Mistake(name + " " + value + ": write it as WIDTHxHEIGHT, sides of 1 to " +
                    std::to_string(kLargestSide) + " pixels");
        }
        return {static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)};
    }

    static double TakePercent(const std::string& value) {
        double percent = 0;
        const char* end = value.data() + value.size() - (value.ends_with('%') ? 1 : 0);
        const auto read = std::from_chars(value.data(), end, percent, std::chars_format::fixed);
        if (read.ec != std::errc{} || read.ptr != end || !(percent > 0 && percent <= 1000))
            Mistake("--scale " + value + ": not a number of percent above 0, up to 1000");
        return percent;
    }

    void TakeFit(const std::string& value) {
        constexpr std::pair<const char*, Fit> kFits[] = {
            {"contain", Fit::Contain}, {"cover", Fit::Cover}, {"stretch", Fit::Stretch}};
        for (const auto& [name, fit] : kFits) {
            if (value == name) {
                fit_ = fit;
                return;
            }
        }
        Mistake("--fit " + value + ": no such way, they are contain, cover, stretch");
    }

    void DescribeRun() {
        words_.Group("The run");
        DescribeMemoryLimit(words_, options_.memoryLimit);
        words_.Number("--jobs", "N", {1, kMostJobs, ""},
                      "work on so many frames at once; without it, as many as there are processors",
                      [this](std::uint32_t value) { options_.jobs = value; });
        words_.Switch("--test-build", "as the dialog's Test button does",
                      [this] { options_.testBuild = true; });
        DescribeTalk(words_, options_.talk);
    }

    void TakeFormat(const std::string& value) {
        options_.format = OutputKindNamed(value);
        if (!options_.format) Mistake("--format " + value + ": no such kind, they are " + FormatNames(", "));
    }

    void TakePictures(const std::string& word) {
        if (word == kStandardStream || word == std::string("@") + kStandardStream) {
            if (readsStandardInput_) Mistake(word + ": the standard input is read already");
            readsStandardInput_ = true;
        }
        if (word.starts_with('@')) options_.alsoRead.push_back(word.substr(1));
        for (std::string& path : NamedPictures(word, standardInput_)) {
            options_.images.push_back({std::move(path), {}});
            gaps_.push_back(gap_);
        }
        gapAfterImages_.clear();
    }

    void Check() {
        if (options_.images.empty()) Mistake("no image is named");
        if (options_.estimate && !options_.sheet.empty())
            Mistake("--estimate writes nothing, so it does not go with --sheet");
        if (options_.output.empty() && !options_.estimate)
            Mistake("no output is named, add -o FILE (" + OutputSuffixes() + ") or -o FOLDER/");
        if (fit_ && options_.size.kind != SizeRequest::Kind::Exact)
            Mistake("--fit says how to come to --size, give that");
        options_.size.fit = fit_.value_or(Fit::Contain);
        if (options_.plays.endsOnLast) {
            if (options_.plays.times > 1) Mistake("--once plays one time, so it does not go with --loop");
            options_.plays.times = 1;
        }
    }

    GapValues Filled(const GapWords& words) const {
        // A row that the table has not is what the dialog shows as nothing selected, which counts as the
        // first.
        const std::uint32_t type = options_.settings.TransitionType;
        const std::int32_t usual = type < kTransitionCount ? static_cast<std::int32_t>(type) : 0;
        return {words.transition.value_or(usual),
                words.pause.value_or(static_cast<std::int32_t>(options_.settings.TransitionPause)),
                words.delay.value_or(static_cast<std::int32_t>(options_.settings.TransitionDelay))};
    }

    BuildOptions& options_;
    std::istream& standardInput_;
    CommandWords words_{kBuildCommand,
                        "Turns two or more pictures into a looping animation. A picture is a " +
                            ReadablePictureKinds("or") +
                            " file, - for the standard input, or @FILE for a list with one path a line. One "
                            "picture alone fades to the matte colour and back."};
    SettingWords settings_;
    GapWords gap_;
    std::vector<GapWords> gaps_;
    std::string gapAfterImages_; // the last such option that no image follows
    std::optional<Fit> fit_;
    std::string sizeOption_;
    bool readsStandardInput_ = false;
};

} // namespace

const CommandSummary kBuildCommand = {"build", "[options] IMAGE... -o OUTPUT",
                                      "turns pictures into a looping animation"};
const CommandSummary kSheetCommand = {"sheet", "[options] IMAGE IMAGE -o FILE.png",
                                      "draws what the transitions look like"};
const CommandSummary kSettingsCommand = {"settings", "[options]",
                                         "shows the settings, and writes them to a file"};

BuildOptions ParseBuild(std::span<const std::string> words, std::istream& standardInput) {
    BuildOptions options;
    BuildReader(options, standardInput).Read(words);
    return options;
}

SheetOptions ParseSheet(std::span<const std::string> words) {
    SheetOptions options;
    SettingWords settings;
    CommandWords command(
        kSheetCommand,
        "Draws frames of the way from the first picture to the second, in true colour: a row for each "
        "of the 33 transitions, of pictures shrunk to 160x120 before; or, of one transition, up to 48 "
        "frames of the pictures as they are (shrunk before, too, where the frames would be very many "
        "or large).");
    command.Value("-o,--output", "FILE.png", "where the sheet goes",
                  [&](const std::string& value) { TakePath("-o", value, options.output); });
    DescribeTransition(command, "the one to show", [&](std::int32_t row) { options.transition = row; });
    settings.DescribeMatte(command);
    settings.DescribeAll(command);
    DescribeMemoryLimit(command, options.memoryLimit);
    DescribeTalk(command, options.talk);
    command.Others([&](const std::string& word) { options.images.push_back(word); });
    command.Footer("After -- all words are pictures.");
    command.Read(words);
    if (options.images.size() != 2) Mistake("a sheet shows the way between two images, name both");
    if (options.output.empty()) Mistake("no output is named, add -o FILE.png");
    options.settings = settings.Settle();
    options.warnings = std::move(settings.Warnings());
    return options;
}

SettingsOptions ParseSettings(std::span<const std::string> words) {
    SettingsOptions options;
    SettingWords settings;
    CommandWords command(kSettingsCommand,
                         "Shows every setting: key, value, default, range, kind, label in the dialogs, "
                         "meaning. The values are the defaults, unless the options say others.");
    settings.DescribeAll(command);
    command.Switch("--json", "as a JSON array instead of a table", [&] { options.json = true; });
    command.Value("--write", "FILE", "also write the values to a file for --config or the plug-in",
                  [&](const std::string& value) { TakePath("--write", value, options.write); });
    command.Read(words);
    options.settings = settings.Settle();
    options.warnings = std::move(settings.Warnings());
    return options;
}

} // namespace lumafold
