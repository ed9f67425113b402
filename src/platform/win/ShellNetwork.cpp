// Compiled on Windows only.
#include "platform/win/ShellNetwork.h"

#include <shldisp.h>
#include <stdexcept>
#include <string>
#include <utility>
#include <windows.h>

namespace nv {

namespace {

constexpr long kControlPanel = 3; ///< the shell's number of that folder
constexpr const wchar_t *kFolder = L"Network Connections";
constexpr const wchar_t *kEnable = L"En&able";
constexpr const wchar_t *kDisable = L"Disa&ble";

/// Owns one reference to a COM object.
template <class Interface>
class Com {
  public:
    Com() = default;
    ~Com() {
        if (m_object)
            m_object->Release();
    }
    Com(Com &&other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Com(const Com &) = delete;
    Com &operator=(const Com &) = delete;
    Com &operator=(Com &&) = delete;

    Interface **out() { return &m_object; }
    Interface *operator->() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

  private:
    Interface *m_object = nullptr;
};

void check(HRESULT result) {
    if (FAILED(result))
        throw std::runtime_error("the Windows shell answered with error " +
                                 std::to_string(static_cast<unsigned long>(result)));
}

std::wstring taken(BSTR text) {
    std::wstring result(text ? text : L"");
    SysFreeString(text);
    return result;
}

template <class Item>
std::wstring nameOf(const Com<Item> &item) {
    BSTR name = nullptr;
    check(item->get_Name(&name));
    return taken(name);
}

std::wstring wide(std::string_view utf8) {
    const int bytes = static_cast<int>(utf8.size());
    std::wstring text(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0)),
        L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, text.data(), static_cast<int>(text.size()));
    return text;
}

std::wstring lower(std::wstring text) {
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

VARIANT number(long value) {
    VARIANT result = {};
    result.vt = VT_I4;
    result.lVal = value;
    return result;
}

Com<FolderItem> itemNamed(const Com<Folder> &folder, const std::wstring &name) {
    Com<FolderItems> items;
    check(folder->Items(items.out()));
    long count = 0;
    check(items->get_Count(&count));
    for (long i = 0; i < count; ++i) {
        Com<FolderItem> item;
        check(items->Item(number(i), item.out()));
        if (item && lower(nameOf(item)) == lower(name))
            return item;
    }
    return {};
}

Com<Folder> connections() {
    Com<IShellDispatch> shell;
    check(CoCreateInstance(CLSID_Shell, nullptr, CLSCTX_INPROC_SERVER, IID_IShellDispatch,
                           reinterpret_cast<void **>(shell.out())));
    Com<Folder> panel;
    check(shell->NameSpace(number(kControlPanel), panel.out()));
    Com<Folder> found;
    if (!panel)
        return found;
    const Com<FolderItem> item = itemNamed(panel, kFolder);
    Com<IDispatch> folder;
    if (item)
        check(item->get_GetFolder(folder.out()));
    if (folder)
        check(folder->QueryInterface(IID_Folder, reinterpret_cast<void **>(found.out())));
    return found;
}

Com<FolderItemVerb> verbNamed(const Com<FolderItem> &item, const wchar_t *name) {
    Com<FolderItemVerbs> verbs;
    check(item->Verbs(verbs.out()));
    long count = 0;
    check(verbs->get_Count(&count));
    for (long i = 0; i < count; ++i) {
        Com<FolderItemVerb> verb;
        check(verbs->Item(number(i), verb.out()));
        if (verb && nameOf(verb) == name)
            return verb;
    }
    return {};
}

} // namespace

std::string ShellNetwork::NetworkConnectionStatus(std::string_view connectionName) const {
    const Com<Folder> folder = connections();
    if (!folder)
        return {};
    const Com<FolderItem> item = itemNamed(folder, wide(connectionName));
    if (!item)
        return {};
    if (verbNamed(item, kEnable))
        return "DISABLED";
    return verbNamed(item, kDisable) ? "ENABLED" : "";
}

Switched ShellNetwork::switchConnection(std::string_view connectionName, ConnectionState state) {
    const Com<Folder> folder = connections();
    if (!folder)
        return Switched::noFolder;
    const Com<FolderItem> item = itemNamed(folder, wide(connectionName));
    if (!item)
        return Switched::noItem;
    const Com<FolderItemVerb> verb =
        verbNamed(item, state == ConnectionState::enabled ? kEnable : kDisable);
    if (!verb)
        return Switched::alreadySo;
    check(verb->DoIt());
    return Switched::done;
}

} // namespace nv
