#include "app/jobs/RecordContent.h"
#include "cli/Commands.h"
#include "cli/RowContent.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "views/record/Exif.h"

#include <fmt/format.h>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::int64_t urlId = 0;
    Format format = Format::table;
};

Exit run(Session &session, const Arguments &arguments) {
    const auto show = [&](const RecordContent &content) {
        const ExifPicture picture(*content.file);
        if (!picture.hasData())
            session.err << fmt::format("row {} has no EXIF data\n", arguments.urlId);
        const auto writer = makeRowWriter(arguments.format, session.out, {"tag", "value"});
        for (const ExifTagName &tag : exifTagNames())
            if (std::string value = Exif::getEXIFValue(tag.name, picture); !value.empty())
                writer->row({tag.name, std::move(value)});
        writer->finish();
        return Exit::ok;
    };
    return withContent(session, arguments.project, arguments.urlId, show);
}

} // namespace

Command exifCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "exif",
            .what = "What the camera wrote into a row's picture",
            .readme = {"`exif PROJECT ID`", "shows what the camera wrote into a picture"},
            .examples = {{"exif case.nvp 17", ""}, {"exif case.nvp 17 --format jsonl", ""}},
            .arguments = {projectWord(given->project), rowWord(given->urlId),
                          formatOption(given->format)},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
