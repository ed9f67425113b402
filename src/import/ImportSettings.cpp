#include "import/ImportSettings.h"

#include <algorithm>

namespace nv {

namespace {

/// Formats that share an option and a mask show it once.
void addMask(std::vector<std::string_view> &masks, std::string_view mask) {
    if (!mask.empty() && std::ranges::find(masks, mask) == masks.end())
        masks.push_back(mask);
}

std::vector<std::string_view> masksOf(const ImportSettings &job, const SourceOption &option,
                                      Formats formats) {
    std::vector<std::string_view> masks;
    for (const Reader *reader : formats)
        if (reader->option == &option && goesByRulesOf(job, *reader))
            addMask(masks, reader->mask);
    return masks;
}

} // namespace

std::vector<const SourceOption *> importOptions(Formats formats) {
    std::vector<const SourceOption *> options;
    for (const Reader *reader : formats)
        if (reader->option && std::ranges::find(options, reader->option) == options.end())
            options.push_back(reader->option);
    std::ranges::stable_sort(options, {}, &SourceOption::rank);
    return options;
}

bool wants(const ImportSettings &job, const SourceOption &option) {
    return !job.unwanted.contains(&option);
}

void setWanted(ImportSettings &job, const SourceOption &option, bool wanted) {
    if (wanted)
        job.unwanted.erase(&option);
    else
        job.unwanted.insert(&option);
}

bool goesByRulesOf(const ImportSettings &job, const Reader &reader) {
    return !(job.classicOnly && reader.isBeyondClassic);
}

std::string maskText(const ImportSettings &job, Formats formats) {
    std::string text;
    for (const SourceOption *option : importOptions(formats)) {
        if (!wants(job, *option))
            continue;
        for (const std::string_view mask : masksOf(job, *option, formats))
            text.append(text.empty() ? "" : ";").append(mask);
    }
    return text;
}

} // namespace nv
