#include "ui/window/WindowParts.h"

#include "ui/parts/ColumnLimitsPart.h"
#include "ui/parts/FiltersPart.h"
#include "ui/parts/GalleryPart.h"
#include "ui/parts/HashSetsPart.h"
#include "ui/parts/HostsPart.h"
#include "ui/parts/LimitsPart.h"
#include "ui/parts/LinkPart.h"
#include "ui/parts/NetworkPart.h"
#include "ui/parts/PlacesPart.h"
#include "ui/parts/QueryPart.h"
#include "ui/parts/RebuiltPanes.h"
#include "ui/parts/SearchPart.h"
#include "ui/parts/SummaryPart.h"
#include "ui/parts/TagsPart.h"
#include "ui/parts/TemplatesPart.h"
#include "ui/parts/TimePart.h"
#include "ui/parts/TrailPart.h"
#include "ui/parts/ViewersPart.h"

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
