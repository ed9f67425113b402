#pragma once

#include "address/WebAddress.h"
#include "rebuild/exact/Reference.h"

#include <optional>
#include <string>
#include <vector>

namespace nv {

/// What the references of a document are relative to.
class Bases {
  public:
    /// `base` is what the document's base element says, and `charset` its encoding. `sources` are
    /// the lists of its content policies (BasePolicy.h), and must outlive this.
    Bases(const std::string &url, const std::string &base, const std::vector<std::string> &sources,
          std::string charset);

    /// Null for an address that is none. Stands until the next call. A page in "srcdoc" may name a
    /// base of its own.
    const WebAddress *of(const Reference &reference);

  private:
    std::optional<WebAddress> resolved(const std::string &base,
                                       const std::optional<WebAddress> &without) const;

    std::optional<WebAddress> m_own;
    std::string m_charset;
    const std::vector<std::string> &m_sources;
    std::optional<WebAddress> m_base;
    std::string m_named; ///< what m_ofFrame was made of
    std::optional<WebAddress> m_ofFrame;
};

} // namespace nv
