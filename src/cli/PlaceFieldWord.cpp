#include "cli/PlaceFieldWord.h"

namespace nv::cli {

std::string_view wordOf(PlaceField field) {
    switch (field) {
    case PlaceField::Evidence:
        return "Evidence";
    case PlaceField::Person:
        return "Person";
    case PlaceField::Browser:
        return "Browser";
    case PlaceField::Profile:
        return "Profile";
    case PlaceField::Group:
        return "Group";
    case PlaceField::Kind:
        return "Kind";
    case PlaceField::Domain:
        return "Domain";
    case PlaceField::Host:
        return "Host";
    case PlaceField::HashMeaning:
        return "Hash sets";
    case PlaceField::HashSet:
        return "Hash set";
    case PlaceField::Tag:
        return "Tag";
    }
    return {};
}

} // namespace nv::cli
