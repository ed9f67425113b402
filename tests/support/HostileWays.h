#pragma once

#include <array>
#include <string_view>

// Ways in which a page reaches for what lies outside of its folder, most of them so written that a
// search of the text doesn't see it.
namespace nv::test {

/// "@" stands for an address outside of the folder, without a file's name: "http://host" or "..";
/// "%" stands for "@".
struct HostileWay {
    std::string_view name;
    std::string_view html;
};

inline constexpr std::array kHostileWays = {
    HostileWay{"css escape in url", R"~(<style>body{background:u\72l(@/red.gif)}</style>)~"},
    HostileWay{"css escape of all letters",
               R"~(<style>body{background:\75\72\6c(@/red.gif)}</style>)~"},
    HostileWay{"css escape and quotes",
               R"~(<style>body{background:\000075rl( '@/red.gif' )}</style>)~"},
    HostileWay{"css escape in the address",
               R"~(<style>body{background:url(\@/r\65 d.gif)}</style>)~"},
    HostileWay{"css comment", R"~(<style>body{background:/**/url(@/red.gif)}</style>)~"},
    HostileWay{"css upper case", R"~(<style>body{BACKGROUND:URL(@/red.gif)}</style>)~"},
    HostileWay{"css src", R"~(<style>body{background:src("@/red.gif")}</style>)~"},
    HostileWay{"image-set", R"~(<style>body{background:image-set("@/red.gif" 1x)}</style>)~"},
    HostileWay{"image-set of a browser",
               R"~(<style>body{background:-webkit-image-set(url(@/red.gif) 1x)}</style>)~"},
    HostileWay{"image-set escaped",
               R"~(<style>body{background:-webkit-im\61ge-set("@/red.gif" 1x)}</style>)~"},
    HostileWay{
        "cross-fade",
        R"~(<style>body{background:-webkit-cross-fade(url(@/red.gif),url(@/red.gif),0.5)}</style>)~"},
    HostileWay{"image()", R"~(<style>body{background:image("@/red.gif")}</style>)~"},
    HostileWay{"own property",
               R"~(<style>:root{--a:url(@/red.gif)}body{background:var(--a)}</style>)~"},
    HostileWay{"own property of a text",
               R"~(<style>:root{--a:"@/red.gif"}body{background:image-set(var(--a) 1x)}</style>)~"},
    HostileWay{"typed attribute",
               R"~(<style>body{background:image-set(attr(id))}</style><body id="@/red.gif">)~"},
    HostileWay{"import", R"~(<style>%import "@/red.css";</style>)~"},
    HostileWay{"import escaped", R"~(<style>%im\70ort "@/red.css";</style>)~"},
    HostileWay{"import as url", R"~(<style>%import u\72l(@/red.css);</style>)~"},
    HostileWay{"import behind a comment", R"~(<style><!-- %import "@/red.css"; --></style>)~"},
    HostileWay{"import of a layer", R"~(<style>%import url(@/red.css) layer(a) screen;</style>)~"},
    HostileWay{"import in a rule", R"~(<style>%media all{%import "@/red.css";}</style>)~"},
    HostileWay{
        "font",
        R"~(<style>%font-face{font-family:f;src:u\72l(@/f.woff)}body{font-family:f}</style>a)~"},
    HostileWay{"nested rule", R"~(<style>body{& p{background:url(@/red.gif)}}</style><p>a)~"},
    HostileWay{"cursor", R"~(<body style="cursor:u\72l(@/red.gif),auto">)~"},
    HostileWay{"list", R"~(<ul style="list-style:u\72l(@/red.gif)"><li>a</ul>)~"},
    HostileWay{"content", R"~(<style>body::before{content:u\72l(@/red.gif)}</style>)~"},
    HostileWay{"binding", R"~(<style>body{-moz-binding:url(@/a.xml#b)}</style>)~"},
    HostileWay{"behavior", R"~(<style>body{behavior:url(@/a.htc)}</style>)~"},
    HostileWay{"expression", R"~(<p style="width:expression(new Image().src='@/red.gif')">a)~"},
    // Old browsers take a name with blanks or a comment in front of its bracket for a function.
    HostileWay{"expression behind a blank",
               R"~(<p style="width:expression (new Image().src='@/red.gif')">a)~"},
    HostileWay{"expression behind a comment",
               R"~(<p style="width:expression/**/(new Image().src='@/red.gif')">a)~"},
    HostileWay{"expression in an own property",
               R"~(<p style="--a:e\78pression (location='@/red.html')">a)~"},
    HostileWay{"url behind a blank", R"~(<style>body{background:url (@/red.gif)}</style>)~"},
    HostileWay{"url behind a comment",
               R"~(<style>body{background:u\72l/**/ /**/(@/red.gif)}</style>)~"},
    HostileWay{"url behind a blank in a drawing",
               R"~(<svg><rect fill="url (@/red.svg#a)" width=99 height=99 /></svg>)~"},
    HostileWay{
        "filter of a maker",
        R"~(<p style="filter:progid:DXImageTransform.Microsoft.AlphaImageLoader(src='@/red.gif')">a)~"},
    HostileWay{"entity in a style attribute", R"~(<body style="background:&#117;rl(@/red.gif)">)~"},
    HostileWay{"hexadecimal entity", R"~(<body style="background:&#x75;&#x72l(@/red.gif)">)~"},
    HostileWay{"entity of a bracket", R"~(<body style="background:url&lpar;@/red.gif&rpar;">)~"},
    HostileWay{"entity in an address",
               R"~(<img src="&#x2e;&#x2e;/red.gif"><img src="@&sol;red.gif">)~"},
    HostileWay{"line break in an address", "<img src=\"\t@\n/red.gif\">"},
    HostileWay{"backslashes", R"~(<img src="@\red.gif"><img src="\\127.0.0.1\red.gif">)~"},
    HostileWay{"address without quotes", R"~(<img/src=@/red.gif><img src=`@/red.gif`>)~"},
    HostileWay{"two addresses", R"~(<img src="@/red.gif" src="0000002.gif">)~"},
    HostileWay{"srcset", R"~(<img srcset="@/red.gif 1x" src="0000002.gif">)~"},
    HostileWay{"source",
               R"~(<picture><source srcset="@/red.gif"><img src="0000002.gif"></picture>)~"},
    HostileWay{"preloaded set",
               R"~(<link rel=preload as=image imagesrcset="@/red.gif 1x" imagesizes=1px>)~"},
    HostileWay{"input", R"~(<input type=image src="@/red.gif">)~"},
    HostileWay{"poster", R"~(<video poster="@/red.gif" autoplay><source src="@/a.mp4"></video>)~"},
    HostileWay{"track", R"~(<video src="0000002.mp4"><track default src="@/a.vtt"></video>)~"},
    HostileWay{"playlist as data",
               R"~(<video src="data:video/mp4,&#37;23EXTM3U&#37;0A@/red.mp4" autoplay></video>)~"},
    HostileWay{
        "playlist as encoded data",
        R"~(<audio src="data:audio/mpeg,&#37;0A&#37;23EXTM3U&#37;0A@/red.mp3" autoplay></audio>)~"},
    HostileWay{"playlist of a maker as data",
               R"~(<video src="data:video/mpeg,<asx><ref href='@/red.wmv'/></asx>"></video>)~"},
    HostileWay{"background of a cell",
               R"~(<table background="@/red.gif"><td background="@/red.gif">a)~"},
    HostileWay{"svg image", R"~(<svg><image xlink:href="@/red.gif" width=99 height=99 /></svg>)~"},
    HostileWay{
        "svg set",
        R"~(<svg><image width=99 height=99><set attributeName=href to="@/red.gif" /></image></svg>)~"},
    HostileWay{
        "svg animate",
        R"~(<svg><image width=99 height=99><animate attributeName=xlink:href values="@/red.gif;@/red.gif" dur=1s /></image></svg>)~"},
    HostileWay{
        "svg feImage",
        R"~(<svg><filter id=f><feImage href="@/red.gif" /></filter><rect filter="url(#f)" width=99 height=99 /></svg>)~"},
    HostileWay{"svg use", R"~(<svg><use href="@/red.svg#a" /></svg>)~"},
    HostileWay{"svg paint",
               R"~(<svg><rect fill="u\72l(@/red.svg#a)" width=99 height=99 /></svg>)~"},
    HostileWay{"svg style", R"~(<svg><style>&#42;{background:url(@/red.gif)}</style></svg>)~"},
    HostileWay{
        "svg page within",
        R"~(<svg><foreignObject width=99 height=99><img src="@/red.gif"></foreignObject></svg>)~"},
    HostileWay{
        "mathml",
        R"~(<math><mtext><img src="@/red.gif"></mtext><maction href="@/red.gif" xlink:href="@/red.html">a</maction></math>)~"},
    HostileWay{
        "mathml as a link",
        R"~(<math href="@/red.html"><mrow xlink:href="@/red.html" xlink:actuate="onLoad" xlink:type="simple" xlink:show="replace"><mi href="@/red.html">a</mi></mrow></math>)~"},
    HostileWay{
        "mathml with an action",
        R"~(<math><maction actiontype="statusline#@/red.html" selection="2" other="@/red.gif"><mi>a</mi><mtext>@/red.html</mtext></maction><maction actiontype="link" dsi:href="@/red.html"><mi>b</mi></maction></math>)~"},
    HostileWay{
        "mathml with pictures",
        R"~(<math><mglyph src="@/red.gif" alt=a></mglyph><mi><mglyph src="@/red.gif"></mglyph></mi><ms background="@/red.gif">b</ms><mtable background="@/red.gif"><mtr><mtd background="@/red.gif"></table></math>)~"},
    HostileWay{
        "mathml with styles",
        R"~(<math mathbackground="url(@/red.gif)" style="background:u\72l(@/red.gif)"><mstyle mathcolor="red;background:url(@/red.gif)" background="@/red.gif"><mi style="background:url(@/red.gif)">a</mi></mstyle><style>&#42;{background:url(@/red.gif)}</style></math>)~"},
    HostileWay{
        "mathml with notes",
        R"~(<math definitionURL="@/red.html"><semantics><mi>a</mi><annotation-xml encoding="text/html" src="@/red.html"><img src="@/red.gif"><iframe src="@/red.html"></iframe></annotation-xml><annotation-xml encoding="image/svg+xml"><svg><image href="@/red.gif" width=99 height=99 /></svg></annotation-xml><annotation src="@/red.html" cd="@/">b</annotation></semantics></math>)~"},
    HostileWay{
        "mathml with a script",
        R"~(<math onload="new Image().src='@/red.gif'"><mi onclick="location='@/'" onmouseover="location='@/'">a</mi><script>new Image().src="@/red.gif"</script><mtext><script>new Image().src="@/red.gif"</script><object data="@/red.html"></object><style>%import "@/red.css";</style></mtext></math>)~"},
    HostileWay{
        "mathml with a page",
        R"~(<math><mtext><template shadowrootmode=open><img src="@/red.gif"></template><div><template shadowrootmode=open><img src="@/red.gif"></template></div></mtext><mi><svg><style>&#42;{background:url(@/red.gif)}</style></svg></mi></math>)~"},
    HostileWay{
        "shadow tree",
        R"~(<div><template shadowrootmode=open><img src="@/red.gif"><slot onslotchange="location='@/'"></slot></template></div>)~"},
    HostileWay{
        "shadow tree with styles",
        R"~(<div><template shadowrootmode=closed><style>%import "@/red.css";:host{background:u\72l(@/red.gif)}::slotted(p){background:url(@/red.gif)}</style><link rel=stylesheet href="@/red.css"><p style="background:url(@/red.gif)">a</p></template><p>b</p></div>)~"},
    HostileWay{"shadow tree within another one",
               R"~(<div><template shadowrootmode=open><section><template shadowrootmode=OPEN><link rel="preload stylesheet" as=image href="@/red.css"><img src="@/red.gif" onerror="location='@/'"><template><img src="@/red.gif"></template></template></section></template></div>)~"},
    HostileWay{
        "shadow tree with what runs",
        R"~(<x-y><template shadowrootmode=open shadowrootclonable onload="location='@/'"><script src="@/a.js">location='@/'</script><iframe src="@/red.html"></iframe><base href="@/"><meta http-equiv=refresh content="0;url=@/red.html"><form action="@/"><input type=image src="@/red.gif"></form></template></x-y>)~"},
    HostileWay{
        "shadow tree where none can be",
        R"~(<table><template shadowrootmode=open><tr><td background="@/red.gif"></template></table><svg><template shadowrootmode=open><image href="@/red.gif" width=99 height=99 /></template></svg><template shadowrootmode=open></div><style></template><img src="@/red.gif"></style></template>)~"},
    HostileWay{"frame", R"~(<iframe src="@/red.html"></iframe>)~"},
    HostileWay{"srcdoc", R"~(<iframe srcdoc="<img src='@/red.gif'>"></iframe>)~"},
    HostileWay{"page as data", R"~(<iframe src="data:text/html,<img src='@/red.gif'>"></iframe>)~"},
    HostileWay{
        "page as data of 64",
        R"~(<iframe src="DATA:TEXT/HTML ;charset=utf-8,&#37;3Cstyle&#37;3Ebody{background:url(@/red.gif)}</style>"></iframe>)~"},
    HostileWay{
        "svg as data",
        R"~(<iframe src="data:image/svg+xml,<svg xmlns='http://www.w3.org/2000/svg'><image href='@/red.gif'/></svg>"></iframe>)~"},
    HostileWay{"style as data",
               R"~(<link rel=stylesheet href="data:text/css,body{background:u\72l(@/red.gif)}">)~"},
    HostileWay{"import as data",
               R"~(<style>%import "data:text/css,body{background:url(@/red.gif)}";</style>)~"},
    HostileWay{"page as its own style",
               R"~(<link rel=stylesheet href="#">{}body{background:url(@/red.gif)})~"},
    HostileWay{"page imported as its own style",
               R"~(<style>%import "#a";</style>{}body{background:url(@/red.gif)})~"},
    HostileWay{"object", R"~(<object data="@/red.html"><embed src="@/red.html"></object>)~"},
    HostileWay{"applet", R"~(<applet codebase="@/" archive="@/a.jar"></applet>)~"},
    HostileWay{"base", R"~(<base href="@/"><img src="0000002.gif"><img src="red.gif">)~"},
    HostileWay{"refresh", R"~(<meta http-equiv=refresh content="0;url=@/red.html">)~"},
    HostileWay{"refresh as an entity",
               R"~(<meta http-equiv="&#82;efresh" content="0;url=@/red.html">)~"},
    HostileWay{"header as an element",
               R"~(<meta http-equiv=Link content="<@/red.css>; rel=stylesheet">)~"},
    HostileWay{
        "hints",
        R"~(<link rel="dns-prefetch preconnect" href="@/"><link rel=prefetch href="@/red.html">)~"},
    HostileWay{"link styles", R"~(<link rel="x stylesheet" href="@/red.css">)~"},
    HostileWay{"script",
               R"~(<script>new Image().src="@/red.gif"</script><script src="@/a.js"></script>)~"},
    HostileWay{
        "handler",
        R"~(<body onload="new Image().src='@/red.gif'"><img src=x onerror="location='@/'">)~"},
    HostileWay{"script as an address",
               R"~(<iframe src="java&Tab;script:new Image().src='@/red.gif'"></iframe>)~"},
    HostileWay{"form", R"~(<form action="@/"><button formaction="@/">a</button></form>)~"},
    HostileWay{"ping", R"~(<a ping="@/" href="#a">a</a>)~"},
    // What one parser takes for text and another one for tags.
    HostileWay{"noscript",
               R"~(<noscript><p title="</noscript><img src='@/red.gif'>"></noscript>)~"},
    HostileWay{"noframes",
               R"~(<noframes><p title="</noframes><img src='@/red.gif'>"></noframes>)~"},
    HostileWay{"noembed", R"~(<noembed><p title="</noembed><img src='@/red.gif'>"></noembed>)~"},
    HostileWay{"xmp", R"~(<xmp><p title="</xmp><img src='@/red.gif'>"></xmp>)~"},
    HostileWay{"textarea",
               R"~(<textarea><p title="</textarea><img src='@/red.gif'>"></textarea>)~"},
    HostileWay{"title", R"~(<title><p title="</title><img src='@/red.gif'>"></title>)~"},
    HostileWay{"plaintext", R"~(<svg><p><style><plaintext></style><img src="@/red.gif">)~"},
    HostileWay{"template", R"~(<template><img src="@/red.gif"></template>)~"},
    HostileWay{"comment", R"~(<!--><img src="@/red.gif">--><!--!><img src="@/red.gif">)~"},
    HostileWay{
        "section",
        R"~(<svg><![CDATA[<img src="@/red.gif">]]></svg><![CDATA[<img src="@/red.gif">]]>)~"},
    HostileWay{"section in a title",
               R"~(<svg></p><title><![CDATA[</title><img src="@/red.gif">]]></title></svg>)~"},
    HostileWay{"style in svg", R"~(<svg><style><img src="@/red.gif"></style></svg>)~"},
    HostileWay{"style text in svg",
               R"~(<svg></p><style><a title="</style><img src='@/red.gif'>">)~"},
    HostileWay{"mutation of a form",
               R"~(<form><math><mtext></form><form><mglyph><style></math><img src="@/red.gif">)~"},
    HostileWay{
        "mutation of a table",
        R"~(<math><mtext><table><mglyph><style><!--</style><img title="--&gt;&lt;img src='@/red.gif'&gt;">)~"},
    HostileWay{
        "mutation of a heading",
        R"~(<svg><desc><table><style><title><a id="</title><img src='@/red.gif'>"></table></desc></svg>)~"},
    HostileWay{
        "select",
        R"~(<select><option><style></select><img src="@/red.gif"></style></option></select>)~"},
    HostileWay{"style that ends early",
               R"~(<style>a{content:"</style><img src='@/red.gif'>"}</style>)~"},
    HostileWay{"escaped end of a style",
               R"~(<style>a{content:"<\/style><img src='@/red.gif'>"}</style>)~"},
    // What browsers take as data only.
    HostileWay{"subtitles", R"~(<video controls><track default src="@/red.vtt"></video>)~"},
    HostileWay{
        "subtitles as data",
        R"~(<video controls><track default src="data:text/vtt;charset=x,WEBVTT&#10;&#10;STYLE&#10;::cue{background:url(@/red.gif)}&#10;&#10;00:00.000 --> 00:09.000&#10;<img src='@/red.gif'><b onclick=@/red.gif>a</b>&#10;"></video>)~"},
    HostileWay{
        "mask as data",
        R"~(<p style="mask:url('data:image/svg+xml,<svg xmlns=&quot;http://www.w3.org/2000/svg&quot;><mask id=&quot;a&quot;><image href=&quot;@/red.gif&quot;/></mask><script href=&quot;@/a.js&quot;/><style>%import &quot;@/red.css&quot;;</style></svg>#a')">a)~"},
    HostileWay{
        "filter as data",
        R"~(<p style="filter:url('data:image/svg+xml,<svg xmlns=&quot;http://www.w3.org/2000/svg&quot;><filter id=&quot;f&quot;><feImage href=&quot;@/red.gif&quot;/></filter></svg>#f')">a)~"},
    HostileWay{
        "use of data",
        R"~(<svg><use href="data:image/svg+xml,<svg xmlns='http://www.w3.org/2000/svg' id='a'><image href='@/red.gif'/><script>location='@/'</script></svg>#a"/></svg>)~"},
    // What comes out of a cache with them is in kHostileParts.
    HostileWay{"use of a cached drawing",
               R"~(<svg><use href="part.svg?from=@#a"/><use href="part.svg?from=@#loop"/></svg>)~"},
    HostileWay{"use of a cached drawing whole", R"~(<svg><use href="part.svg?from=@"/></svg>)~"},
    HostileWay{
        "masks of a cached drawing",
        R"~(<p style="mask:url(part.svg?from=@#m);filter:url(part.svg?from=@#f);clip-path:url(part.svg?from=@#c)">a<p style="--m:url(part.svg?from=@);mask-image:var(--m)">b)~"},
    HostileWay{"cached subtitles",
               R"~(<video controls><track default src="part.vtt?from=@"></video>)~"},
};

/// What hostile pages name that is in the cache with them.
struct HostilePart {
    std::string_view path;
    std::string_view type;
    std::string_view body;
};

inline constexpr std::array kHostileParts = {
    HostilePart{
        "part.svg?from=@", "image/svg+xml",
        R"~(<?xml version="1.0"?><?xml-stylesheet href="@/red.css"?><!DOCTYPE svg [<!ENTITY out SYSTEM "@/red.txt"><!ENTITY a "aaaaaaaaaa"><!ENTITY b "&a;&a;&a;&a;&a;">]>
<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" onload="location='@/'"><style>%import "@/red.css"; .x{fill:url(@/red.svg#a)} rect,*{background:url(@/red.gif)} %font-face{font-family:f;src:url(@/f.woff)}</style><script href="@/a.js">location='@/'</script>
<symbol id="a" onclick="location='@/'" viewBox="0 0 9 9"><script>location='@/'</script><foreignObject width="9" height="9"><iframe xmlns="http://www.w3.org/1999/xhtml" src="@/red.html"></iframe><body onload="location='@/'"/></foreignObject><image href="@/red.gif" width="9" height="9"/><image xlink:href="&out;" width="9" height="9"/><use href="@/red.svg#a"/><use xlink:href="#loop"/><text class="x" style="font-family:f;background:image-set('@/red.gif' 1x);fill:url(@/red.svg#a)">&out;&b;</text><a href="@/" ping="@/"><rect class="x" width="9" height="9" fill="u\72l(@/red.svg#a)" filter="url(#f)"/></a><animate attributeName="href" to="@/red.gif"/><set attributeName="xlink:href" to="@/red.gif"/></symbol>
<g id="loop"><use href="#loop"/><use href="#loop2"/><use href="#loop2"/></g><g id="loop2"><use href="#loop"/><use href="#loop"/></g>
<filter id="f"><feImage href="@/red.gif"/><feImage xlink:href="@/red.svg#a"/></filter><mask id="m"><image href="@/red.gif" width="9" height="9"/><rect width="9" height="9" fill="#fff"/></mask><clipPath id="c"><use href="@/red.svg#a"/><circle r="9"/></clipPath></svg>
)~"},
    HostilePart{
        "part.vtt?from=@", "text/vtt",
        "WEBVTT\n\nSTYLE\n::cue{background:url(@/red.gif)}\n%import '@/red.css';\n\nNOTE "
        "@/red.gif\n\n1\n00:00.000 --> 00:09.000\n<img src='@/red.gif'><script>"
        "location='@/'</script><b onclick=\"location='@/'\">a</b><c.x>b</c>&lt;img src=@/>\n"}};

} // namespace nv::test
