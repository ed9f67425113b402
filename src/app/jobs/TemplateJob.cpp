#include "app/jobs/TemplateJob.h"

#include "app/jobs/Trail.h"
#include "app/messages/Messages.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"

#include <fmt/format.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kManaging = "MainForm.PopupMenuTemplates_Click()";

TemplateResult createTemplate(Program &program, RecordTools &tools, UrlRecord &page) {
    const ProgramState &state = program.state;
    if (page.CacheFileRebuilt && !bringBackFolder(tools, page))
        return TemplateResult::noRebuild;
    const auto create = [&](IfTemplateExists ifExists) {
        return createTemplate(page, state.templatesPath, state.appVersion, ifExists,
                              tools.context());
    };
    const TemplateResult result = create(IfTemplateExists::refuse);
    if (result != TemplateResult::exists)
        return result;
    const std::string path = textOf(templatePathOf(page, state.templatesPath));
    return program.around.examiner.ask(messages::templateExists(path)) == Answer::Yes
               ? create(IfTemplateExists::overwrite)
               : result;
}

/// A template to be laid, as far as it can be told once for all pages.
struct Layer {
    fs::path file;
    std::optional<PageTemplate> made; ///< nothing when it can't be read, which is logged
};

std::vector<Layer> layersOf(std::span<const fs::path> templates, FailureLog &log) {
    std::vector<Layer> layers;
    for (const fs::path &file : templates)
        layers.push_back({file, trapped(log, Severity::Warning, "MainForm.RebuildFromTemplates()",
                                        kContactSupport, std::optional<PageTemplate>(), [&file] {
                                            const Bytes bytes = readWhole(file);
                                            return std::optional(readTemplate(ByteView(bytes)));
                                        })});
    return layers;
}

Laid layOne(Program &program, RecordTools &tools, UrlRecord &page, const Layer &layer) {
    if (!layer.made)
        return Laid::failed;
    if (program.state.templateMatchByTitle && !templateMatchesTitle(*layer.made, page.WebpageTitle))
        return Laid::otherTitle;
    if (layer.made->records.count() == 0)
        return Laid::noTemplate;
    return rebuildFromTemplate(page, layer.file, tools.context(), program.around.clock)
               ? Laid::rebuilt
               : Laid::failed;
}

/// A template that doesn't fit takes nothing from one that did.
Laid layAll(Program &program, RecordTools &tools, UrlRecord &page, std::span<const Layer> layers) {
    Laid result = Laid::otherTitle;
    for (const Layer &layer : layers) {
        const Laid one = layOne(program, tools, page, layer);
        if (one == Laid::rebuilt || (one != Laid::otherTitle && result != Laid::rebuilt))
            result = one;
    }
    return result;
}

void showProgress(TaskMonitor &task, std::size_t place, std::size_t count) {
    if (!task.wantsStep())
        return;
    const auto at = static_cast<std::int64_t>(place);
    const auto total = static_cast<std::int64_t>(count);
    task.show(
        {"Overall Progress ", at, total, fmt::format("Processing {} of {}", at, total), at, total});
}

/// Runs `work` on each record; false when cancelled.
bool forEachPage(RecordTools &tools, std::span<const UrlId> ids,
                 const std::function<void(UrlRecord &)> &work) {
    TaskMonitor &task = tools.context().task;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (!task.advance(static_cast<double>(i) / static_cast<double>(ids.size())))
            return false;
        showProgress(task, i + 1, ids.size());
        if (auto page = tools.record(ids[i]))
            work(*page);
    }
    return true;
}

std::string_view reasonText(TemplateResult why) {
    switch (why) {
    case TemplateResult::noRebuild:
        return "a template is made of a rebuilt page";
    case TemplateResult::exists:
        return "the template that was there is kept";
    case TemplateResult::failed:
    case TemplateResult::made:
        break;
    }
    return "it failed; the error log tells why";
}

template <class Result>
std::string countsText(bool cancelled, const std::string &asked, std::string_view done,
                       const std::map<Result, std::size_t> &results, Result success) {
    const auto found = results.find(success);
    const std::size_t count = found == results.end() ? 0 : found->second;
    std::string text =
        fmt::format("{}{} of {} {}.", cancelled ? "Cancelled: " : "", count, asked, done);
    for (const auto &[why, number] : results)
        if (why != success)
            text += fmt::format(" {} not: {}.", number, reasonText(why));
    return text;
}

} // namespace

TemplatesMade createTemplates(Program &program, RecordTools &tools, std::span<const UrlId> ids) {
    TemplatesMade made;
    made.asked = ids.size();
    made.cancelled = !forEachPage(tools, ids, [&](UrlRecord &page) {
        const TemplateResult result = createTemplate(program, tools, page);
        ++made.results[result];
        if (result == TemplateResult::made)
            made.last = templatePathOf(page, program.state.templatesPath);
    });
    return made;
}

LaidTemplates rebuildFromTemplates(Program &program, RecordTools &tools, std::span<const UrlId> ids,
                                   std::span<const fs::path> templates,
                                   const std::function<void(UrlId urlID, Laid)> &done) {
    const std::vector<Layer> layers = layersOf(templates, program.log);
    LaidTemplates laid;
    laid.asked = ids.size();
    laid.cancelled = !forEachPage(tools, ids, [&](UrlRecord &page) {
        const Laid result = layAll(program, tools, page, layers);
        ++laid.results[result];
        if (done)
            done(page.URLID, result);
    });
    const auto rebuilt = static_cast<std::int64_t>(
        laid.results.contains(Laid::rebuilt) ? laid.results.at(Laid::rebuilt) : 0);
    for (const fs::path &file : templates)
        noteTemplate(program, file, laidText(laid), rebuilt);
    return laid;
}

std::string_view reasonText(Laid why) {
    switch (why) {
    case Laid::otherTitle:
        return "its title is another than the template's";
    case Laid::noTemplate:
        return "the template holds no page";
    case Laid::failed:
    case Laid::rebuilt:
        break;
    }
    return "it failed; the error log tells why";
}

std::string madeText(const TemplatesMade &made) {
    return countsText(made.cancelled, counted(made.asked, "template"), "made", made.results,
                      TemplateResult::made);
}

std::string laidText(const LaidTemplates &laid) {
    return countsText(laid.cancelled, counted(laid.asked, "page"), "rebuilt from the template",
                      laid.results, Laid::rebuilt);
}

bool isTemplateThere(Program &program, const fs::path &file) {
    if (fs::is_regular_file(file))
        return true;
    program.around.examiner.tell(messages::templateMissing(textOf(file)));
    return false;
}

std::optional<fs::path> renameTemplate(Program &program, const fs::path &file,
                                       std::string_view name) {
    Examiner &examiner = program.around.examiner;
    if (!isTemplateThere(program, file))
        return std::nullopt;
    const auto target = renamedTemplatePath(file, name);
    if (!target) {
        examiner.tell(
            messages::templatesFailed("The name holds no character that a file name can."));
        return std::nullopt;
    }
    std::error_code none;
    if (fs::equivalent(file, *target, none))
        return std::nullopt;
    if (fs::exists(*target) &&
        examiner.ask(messages::templateExists(textOf(*target))) != Answer::Yes)
        return std::nullopt;
    const auto failure = failureOf(program.log, kManaging, [&] { fs::rename(file, *target); });
    if (failure)
        examiner.tell(messages::templatesFailed(*failure));
    return failure ? std::nullopt : target;
}

bool deleteTemplate(Program &program, const fs::path &file) {
    Examiner &examiner = program.around.examiner;
    if (!isTemplateThere(program, file) ||
        examiner.ask(messages::deleteTemplate(textOf(file))) != Answer::Yes)
        return false;
    const auto failure = failureOf(program.log, kManaging, [&] { fs::remove(file); });
    if (failure)
        examiner.tell(messages::templatesFailed(*failure));
    return !failure;
}

} // namespace nv
