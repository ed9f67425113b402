#pragma once

#include "base/Text.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <fmt/format.h>

#include <array>
#include <string>
#include <string_view>

// Pages that want out, and who listens for them.
namespace nv::test {

/// Tells every connection that anything tries to make, and never answers one.
class Listener {
  public:
    Listener() {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            ++heard;
            delete m_server.nextPendingConnection();
        });
        m_server.listen(QHostAddress::LocalHost);
    }
    /// `text` with the listener's address for each "@", and "@" for each "%".
    std::string in(const std::string &text) const {
        return replaceAll(
            replaceAll(text, "@", fmt::format("http://127.0.0.1:{}", m_server.serverPort())), "%",
            "@");
    }

    int heard = 0;

  private:
    QTcpServer m_server;
};

/// What a refused element leaves in the guard's count. Hints, scripts and plugins are off and don't
/// even become requests.
enum class Refusal { counted, silent };

/// One way to reach out of a page; see Listener::in() for its signs.
struct HostileElement {
    const char *name = "";
    const char *html = "";
    Refusal refusal = Refusal::counted;
};

inline constexpr std::array kHostileElements = {
    HostileElement{"img", "<img src='@/a.gif'>"},
    HostileElement{"srcset", "<img srcset='@/a.gif 1x, @/b.gif 2x'>"},
    HostileElement{"picture", "<picture><source srcset='@/a.gif'><img src='@/b.gif'></picture>"},
    HostileElement{"background", "<body background='@/a.gif'>"},
    HostileElement{"table background", "<table background='@/a.gif'><tr background='@/b.gif'><td "
                                       "background='@/c.gif'>a</table>"},
    HostileElement{"css import", "<style>%import url(@/a.css); %import '@/b.css';</style>"},
    HostileElement{"css link", "<link rel=stylesheet href='@/a.css'>"},
    HostileElement{"css image", "<div style='background:url(@/a.gif)'>a</div>"},
    HostileElement{"css list and border",
                   "<ul style='list-style-image:url(@/a.gif)'><li>a</ul>"
                   "<p style='border:9px solid;border-image:url(@/b.gif) 9'>a"},
    HostileElement{"css content", "<style>p::before{content:url(@/a.gif)}</style><p>a"},
    HostileElement{"css filter", "<p style='filter:url(@/a.svg#x);mask-image:url(@/b.gif)'>a",
                   Refusal::silent},
    HostileElement{
        "font", "<style>%font-face{font-family:f;src:url(@/f.woff)}p{font-family:f}</style><p>a"},
    HostileElement{"base", "<base href='@/'><img src='a.gif'>"},
    HostileElement{"iframe", "<iframe src='@/a.html'></iframe>"},
    HostileElement{"srcdoc", "<iframe srcdoc=\"<img src='@/a.gif'>\"></iframe>"},
    HostileElement{"data frame", "<iframe src=\"data:text/html,<img src='@/a.gif'>\"></iframe>"},
    HostileElement{"frameset",
                   "<frameset cols='50%,50%'><frame src='@/a.html'><frame src='@/b.html'>"},
    HostileElement{"object", "<object data='@/a.html'></object>"},
    HostileElement{"svg image", "<svg><image href='@/a.svg' width=9 height=9 /></svg>"},
    HostileElement{"svg filter", "<svg><filter id=f><feImage href='@/a.gif' /></filter><rect "
                                 "filter='url(#f)' width=9 height=9 /></svg>"},
    HostileElement{"svg use", "<svg><use href='@/a.svg#x' /></svg>", Refusal::silent},
    HostileElement{"video", "<video src='@/a.mp4' autoplay poster='@/a.gif'></video>"},
    HostileElement{"audio", "<audio src='@/a.mp3' autoplay preload=auto></audio>"},
    HostileElement{"source", "<video autoplay><source src='@/a.webm'></video>"
                             "<audio autoplay><source src='@/a.ogg'></audio>"},
    HostileElement{"track", "<video src='@/a.mp4'><track default kind=subtitles src='@/a.vtt'>"
                            "</video>"},
    HostileElement{"input", "<input type=image src='@/a.gif'>"},
    HostileElement{"noscript", "<noscript><img src='@/a.gif'></noscript>"},
    HostileElement{"refresh", "<meta http-equiv=refresh content='0;url=@/a.html'>"},
    HostileElement{"file", "<iframe src='file:///etc/hostname'></iframe>"},
    HostileElement{"ftp", "<img src='ftp://127.0.0.1/a.gif'><iframe src='ftp://127.0.0.1/'>"
                          "</iframe>"},
    HostileElement{"script frame", "<iframe src=\"javascript:fetch('@/')\"></iframe>",
                   Refusal::silent},
    HostileElement{"embed", "<embed src='@/a.swf'>", Refusal::silent},
    HostileElement{"applet", "<applet code=A codebase='@/' archive='@/a.jar'></applet>",
                   Refusal::silent},
    HostileElement{"icon", "<link rel=icon href='@/favicon.ico'>", Refusal::silent},
    HostileElement{"dns-prefetch", "<link rel=dns-prefetch href='@/'>", Refusal::silent},
    HostileElement{"preconnect",
                   "<link rel=preconnect href='@/'><link rel=preconnect href='@' crossorigin>",
                   Refusal::silent},
    HostileElement{"prefetch", "<link rel=prefetch href='@/a.html'>", Refusal::silent},
    HostileElement{"preload",
                   "<link rel=preload as=image href='@/a'><link rel=preload as=style href='@/b'>"
                   "<link rel=modulepreload href='@/c.js'>",
                   Refusal::silent},
    HostileElement{"prerender",
                   "<link rel=prerender href='@/a.html'><link rel=next href='@/b.html'>",
                   Refusal::silent},
    HostileElement{"manifest", "<link rel=manifest href='@/a.json'>", Refusal::silent},
    HostileElement{"ping", "<a ping='@/' href='@/a.html'>a</a>", Refusal::silent},
    HostileElement{"script",
                   "<script>new WebSocket('ws:'+'@'.slice(5)); fetch('@/'); "
                   "navigator.sendBeacon('@/'); new Image().src='@/';location='@/'</script>",
                   Refusal::silent},
    HostileElement{"import map",
                   "<script type=importmap>{\"imports\":{\"a\":\"@/a.js\"}}</script>"
                   "<script type=module>import 'a';</script>",
                   Refusal::silent},
    HostileElement{"form",
                   "<body onload='document.forms[0].submit()'><form method=post "
                   "action='@/'><input name=a></form><script>document.forms[0].submit()"
                   "</script>",
                   Refusal::silent},
    HostileElement{"handlers",
                   "<body onload=\"fetch('@/')\"><img src=x onerror=\"fetch('@/')\"><input "
                   "autofocus onfocus=\"fetch('@/')\"><svg onload=\"fetch('@/')\"></svg>",
                   Refusal::silent},
    HostileElement{"remote script", "<script src='@/a.js'></script>", Refusal::silent},
    HostileElement{"policy",
                   "<meta http-equiv=Content-Security-Policy "
                   "content=\"img-src 'none'; report-uri @/\"><img src='a.gif'>",
                   Refusal::silent},
};

/// Two red points.
inline constexpr std::string_view
    kRedGif("GIF89a\2\0\1\0\x80\0\0\xFF\0\0\xFF\0\0,\0\0\0\0\2\0\1\0\0\2\2D\n\0;", 35);

/// Ways to bring a file "red.html", "red.css" or "red.gif", all red, of the folder above the page
/// on the screen; "link.html" beside the page is a link of the file system to the first.
/// "%" stands for "@".
inline constexpr std::array kOutsideElements = {
    "<iframe src='../red.html' width=1024 height=768 frameborder=0></iframe>",
    "<object data='../red.html' width=1024 height=768></object>",
    "<embed src='../red.html' width=1024 height=768>",
    "<iframe src='link.html' width=1024 height=768 frameborder=0></iframe>",
    "<link rel=stylesheet href='../red.css'><p>a",
    "<style>%import '../red.css';</style><p>a",
    "<img src='../red.gif' width=1024 height=768 alt=''>",
    "<body background='../red.gif'>",
    "<svg width=1024 height=768><image href='../red.gif' width=1024 height=768 /></svg>",
    "<meta http-equiv=refresh content='0;url=../red.html'>",
    "<base href='../'><iframe src='red.html' width=1024 height=768 frameborder=0></iframe>",
};

} // namespace nv::test
