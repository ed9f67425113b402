#include "ui/window/WindowParts.h"

#include "ui/window/ColumnLimitsPart.h"
#include "ui/window/FiltersPart.h"
#include "ui/window/GalleryPart.h"
#include "ui/window/HashSetsPart.h"
#include "ui/window/HostsPart.h"
#include "ui/window/LimitsPart.h"
#include "ui/window/LinkPart.h"
#include "ui/window/NetworkPart.h"
#include "ui/window/PlacesPart.h"
#include "ui/window/QueryPart.h"
#include "ui/window/RebuiltPanes.h"
#include "ui/window/SearchPart.h"
#include "ui/window/SummaryPart.h"
#include "ui/window/TagsPart.h"
#include "ui/window/TemplatesPart.h"
#include "ui/window/TimePart.h"
#include "ui/window/TrailPart.h"
#include "ui/window/ViewersPart.h"

namespace nv {

std::vector<std::unique_ptr<QObject>> newParts(Workbench &bench) {
    std::vector<std::unique_ptr<QObject>> parts;
    parts.reserve(17);
    parts.push_back(std::make_unique<QueryPart>(bench));
    parts.push_back(std::make_unique<GalleryPart>(bench));
    parts.push_back(std::make_unique<TemplatesPart>(bench));
    parts.push_back(std::make_unique<HostsPart>(bench));
    parts.push_back(std::make_unique<PlacesPart>(bench));
    parts.push_back(std::make_unique<HashSetsPart>(bench));
    parts.push_back(std::make_unique<FiltersPart>(bench));
    parts.push_back(std::make_unique<ColumnLimitsPart>(bench));
    parts.push_back(std::make_unique<TimePart>(bench));
    parts.push_back(std::make_unique<TagsPart>(bench));
    parts.push_back(std::make_unique<RebuiltPanes>(bench));
    parts.push_back(std::make_unique<LinkPart>(bench));
    parts.push_back(std::make_unique<NetworkPart>(bench));
    parts.push_back(std::make_unique<SummaryPart>(bench));
    parts.push_back(std::make_unique<TrailPart>(bench));
    parts.push_back(std::make_unique<ViewersPart>(bench));
    parts.push_back(std::make_unique<SearchPart>(bench));
    parts.push_back(std::make_unique<LimitsPart>(bench));
    return parts;
}

} // namespace nv
