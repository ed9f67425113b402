#include "reports/case/CaseStyle.h"

#include "reports/pages/PolicyHash.h"

#include <fmt/format.h>

#include <string>

namespace nv {

namespace {

constexpr std::string_view kStyle = R"css(
:root{color-scheme:light dark;--ground:#fff;--text:#1b1f24;--dim:#57606a;--line:#d0d7de;--soft:#f6f8fa;
--strong:#0b4a8f;--mark:#fff3bf;--warn:#9a3412}
@media(prefers-color-scheme:dark){:root{--ground:#14181d;--text:#e6e9ec;--dim:#a0a8b0;--line:#38414a;--soft:#1d232a;
--strong:#8cc2ff;--mark:#5c4a00;--warn:#fdba74}}
*{box-sizing:border-box}
body{margin:0;font:15px/1.45 system-ui,"Segoe UI",Roboto,"DejaVu Sans",sans-serif;color:var(--text);background:var(--ground);
display:grid;grid-template-columns:15rem minmax(0,1fr);min-height:100vh}
a{color:var(--strong)}
nav{background:var(--soft);border-right:1px solid var(--line);padding:1rem;position:sticky;top:0;height:100vh;overflow:auto;font-size:14px}
nav h2{font-size:12px;text-transform:uppercase;letter-spacing:.05em;color:var(--dim);margin:1.2rem 0 .3rem}
nav ul{list-style:none;margin:0;padding:0}
nav a{display:flex;justify-content:space-between;gap:.5rem;padding:.25rem .5rem;border-radius:4px;text-decoration:none;color:inherit;
overflow-wrap:anywhere}
nav a:hover,nav a:focus-visible{background:var(--line)}
nav a[aria-current]{background:var(--strong);color:var(--ground)}
nav b{flex:none;font-weight:normal;color:inherit;opacity:.75;font-variant-numeric:tabular-nums}
main{padding:1.2rem 1.6rem;min-width:0}
h1{font-size:1.6rem;line-height:1.2;margin:.2rem 0 .6rem;overflow-wrap:anywhere}
h2{font-size:1.15rem;margin:1.8rem 0 .5rem;border-bottom:1px solid var(--line);padding-bottom:.2rem}
dl{display:grid;grid-template-columns:max-content minmax(0,1fr);gap:.2rem 1rem;margin:.4rem 0}
dt{color:var(--dim)}
dd{margin:0;overflow-wrap:anywhere}
p{margin:.4rem 0}
table{border-collapse:collapse;width:100%;table-layout:fixed;font-size:13px}
th,td{border-bottom:1px solid var(--line);padding:.3rem .45rem;text-align:left;vertical-align:top;overflow-wrap:anywhere}
th{background:var(--soft);position:sticky;top:0;z-index:1}
.plain{table-layout:auto}
.num,.n{font-variant-numeric:tabular-nums}
.num{text-align:right}
.u,.hash{font-family:ui-monospace,"DejaVu Sans Mono",Consolas,monospace;font-size:.92em}
.hash{font-size:.85em}
.dim{color:var(--dim)}
.warn{color:var(--warn)}
.note{background:var(--soft);border-left:3px solid var(--strong);padding:.4rem .7rem;margin:.5rem 0;overflow-wrap:anywhere}
.chunk{content-visibility:auto;contain-intrinsic-size:auto 12000px}
.w1{width:5rem}.w2{width:13.5rem}.w3{width:10rem}.w5{width:9rem}.w6{width:4rem}
.copy{font:inherit;font-size:11px;margin-left:.4rem;padding:0 .35rem;border:1px solid var(--line);border-radius:3px;
background:var(--soft);color:var(--dim);cursor:pointer}
.copy::after{content:"Copy"}
.copy.done::after{content:"Copied"}
.find{position:sticky;top:0;z-index:2;background:var(--ground);padding:.5rem 0;display:flex;gap:.6rem;align-items:center;flex-wrap:wrap}
.find[hidden],[hidden]{display:none!important}
.find input{font:inherit;padding:.3rem .5rem;border:1px solid var(--dim);border-radius:4px;min-width:12rem;flex:1;max-width:30rem;
background:var(--ground);color:inherit}
.find~* th{top:3.1rem}
::highlight(found){background:var(--mark);color:inherit}
.pager{display:flex;gap:1rem;flex-wrap:wrap;margin:.6rem 0}
.card{border:1px solid var(--line);border-radius:6px;padding:.8rem 1rem;margin:0 0 1rem;display:grid;
grid-template-columns:14rem minmax(0,1fr);gap:1rem;break-inside:avoid;content-visibility:auto;contain-intrinsic-size:auto 22rem}
.card h3{margin:0 0 .3rem;font-size:1.05rem;overflow-wrap:anywhere}
.card figure{margin:0;text-align:center;font-size:12px;color:var(--dim)}
.card img{max-width:100%;max-height:16rem;border:1px solid var(--line)}
.card img.blurred{width:12rem;filter:blur(3px)}
.card.bare{grid-template-columns:minmax(0,1fr)}
.logo{float:right;max-width:15rem;max-height:6rem;margin-left:1rem}
svg{width:100%;height:auto;display:block;overflow:visible}
.time{overflow-x:auto;padding-right:1rem}
svg text{fill:var(--dim);font-size:11px}
.axis{stroke:var(--line)}
.gap{fill:var(--dim);fill-opacity:.12}
.p0{fill:#2f6fb5}.p1{fill:#d9822b}.p2{fill:#3f9142}.p3{fill:#a33ea1}.p4{fill:#b83232}.p5{fill:#6b7785}.p6{fill:#128a8a}.p7{fill:#8a6d1d}
.heat{fill:#2f6fb5}
.key{display:inline-block;margin-right:1rem;white-space:nowrap}
.key svg{display:inline-block;width:.8em;height:.8em;margin-right:.35em;vertical-align:baseline}
.dot{display:inline-block;width:.7em;height:.7em;margin-right:.4em;vertical-align:baseline}
.tags{list-style:none;margin:.3rem 0;padding:0;display:flex;flex-wrap:wrap;gap:.2rem .8rem}
.tags li{overflow-wrap:anywhere}
.origin{table-layout:auto;min-width:56rem}
.origin th{position:static}
.origin td:first-child{min-width:10.5rem}
.wide{overflow-x:auto}
footer{margin-top:2rem;color:var(--dim);font-size:12px;border-top:1px solid var(--line);padding-top:.5rem}
@media screen and (max-width:760px){
body{display:block}
nav{position:static;height:auto;border-right:0;border-bottom:1px solid var(--line);padding:.6rem .8rem}
nav ul{display:flex;flex-wrap:wrap;gap:.2rem}
nav h2{margin:.5rem 0 .1rem}
main{padding:.8rem}
dl{grid-template-columns:minmax(0,1fr);gap:0}
dd{margin-bottom:.4rem}
.card{grid-template-columns:minmax(0,1fr)}
.time>svg{min-width:46rem}
.origin,.origin td:first-child{min-width:0}
.logo{float:none;display:block;margin:0 0 .6rem}
thead{display:none}
table,tbody,tr,td{display:block;width:auto}
tr{border:1px solid var(--line);border-radius:4px;margin:0 0 .5rem;padding:.2rem}
td{border:0;padding:.1rem .3rem}
td.num{text-align:left}
td[data-h]::before{content:attr(data-h) ": ";color:var(--dim)}
td:empty{display:none}
}
@page{margin:14mm 12mm}
@media print{
:root{color-scheme:light;--ground:#fff;--text:#000;--dim:#444;--line:#999;--soft:#f2f2f2;--strong:#000;--warn:#000}
body{display:block;font-size:9.5pt}
nav,.find,.copy,.pager{display:none!important}
main{padding:0}
a{text-decoration:none;color:inherit}
table{font-size:8pt}
thead{display:table-header-group}
th{position:static}
tr,dl>*,.card,svg,.note{break-inside:avoid}
h2,h3{break-after:avoid}
.chunk,.card{content-visibility:visible}
.wide,.time{overflow:visible;padding:0}
.origin{min-width:0}
.origin td:first-child{min-width:0}
footer{break-before:avoid;margin-top:.6rem}
.w1{width:3rem}.w2{width:12.6rem}.w3{width:6rem}.w5{width:6rem}.w6{width:3.3rem}
}
)css";

constexpr std::string_view kScript = R"js(
(function () {
'use strict';
var d = document, rows = null, texts = null, timer = 0;
function copied(button, done) {
  if (!done) return;
  button.classList.add('done');
  setTimeout(function () { button.classList.remove('done'); }, 1500);
}
function byHand(text) {
  var area = d.createElement('textarea'), done = false;
  area.value = text;
  d.body.appendChild(area);
  area.select();
  try { done = d.execCommand('copy'); } catch (e) { done = false; }
  area.remove();
  return done;
}
function addButton(address) {
  if (address.nextSibling && address.nextSibling.className === 'copy') return;
  var button = d.createElement('button');
  button.type = 'button';
  button.className = 'copy';
  button.setAttribute('aria-label', 'Copy the address');
  address.after(button);
}
function addButtons(place) { place.querySelectorAll('.u').forEach(addButton); }
d.addEventListener('click', function (event) {
  var button = event.target.closest && event.target.closest('button.copy');
  if (!button) return;
  var text = button.previousSibling.textContent;
  if (navigator.clipboard && navigator.clipboard.writeText)
    navigator.clipboard.writeText(text).then(function () { copied(button, true); },
                                             function () { copied(button, byHand(text)); });
  else copied(button, byHand(text));
});
var chunks = d.querySelectorAll('.chunk');
if (chunks.length && 'IntersectionObserver' in window) {
  var seen = new IntersectionObserver(function (entries) {
    entries.forEach(function (entry) {
      if (!entry.isIntersecting) return;
      seen.unobserve(entry.target);
      addButtons(entry.target);
    });
  }, {rootMargin: '400px'});
  chunks.forEach(function (chunk) { seen.observe(chunk); });
} else addButtons(d);
d.querySelectorAll('.card').forEach(addButtons);
window.addEventListener('beforeprint', function () {
  d.querySelectorAll('details').forEach(function (part) { part.open = true; });
});
var box = d.getElementById('find');
if (!box) return;
box.hidden = false;
var field = box.querySelector('input'), told = box.querySelector('output');
function mark(words, shown) {
  if (!window.CSS || !CSS.highlights || !window.Highlight) return;
  CSS.highlights.delete('found');
  if (!words.length) return;
  var found = new Highlight(), left = 1000;
  shown.some(function (row) {
    var walk = d.createTreeWalker(row, NodeFilter.SHOW_TEXT), node;
    while ((node = walk.nextNode())) {
      var text = node.data.toLowerCase();
      if (text.length !== node.data.length) continue;
      words.forEach(function (word) {
        for (var at = text.indexOf(word); at >= 0 && left > 0; at = text.indexOf(word, at + word.length)) {
          var range = new Range();
          range.setStart(node, at);
          range.setEnd(node, at + word.length);
          found.add(range);
          --left;
        }
      });
    }
    return left <= 0;
  });
  CSS.highlights.set('found', found);
}
function search() {
  var words = field.value.toLowerCase().split(/\s+/).filter(Boolean), shown = [];
  if (!rows) {
    if (!words.length) return;
    rows = Array.from(d.querySelectorAll('[data-r]'));
    texts = rows.map(function (row) { return row.textContent.toLowerCase(); });
  }
  rows.forEach(function (row, i) {
    var is = words.every(function (word) { return texts[i].indexOf(word) >= 0; });
    if (row.hidden === is) row.hidden = !is;
    if (is && shown.length < 1000) shown.push(row);
    row.isFound = is;
  });
  chunks.forEach(function (chunk) {
    chunk.hidden = !Array.from(chunk.querySelectorAll('[data-r]')).some(function (row) { return row.isFound; });
  });
  var count = rows.filter(function (row) { return row.isFound; }).length;
  told.textContent = words.length ? count + ' of ' + rows.length + ' on this page' : '';
  mark(words, shown);
}
field.addEventListener('input', function () { clearTimeout(timer); timer = setTimeout(search, 150); });
field.addEventListener('keydown', function (event) {
  if (event.key === 'Escape') { field.value = ''; search(); }
});
})();
)js";

} // namespace

std::string_view caseStyle() {
    return kStyle;
}

std::string_view caseScript() {
    return kScript;
}

std::string_view casePolicy() {
    static const std::string policy = fmt::format(
        R"(<meta http-equiv="Content-Security-Policy" content="default-src 'none'; img-src 'self'; )"
        R"(style-src {}; script-src {}; base-uri 'none'; form-action 'none'">)",
        policyHash(kStyle), policyHash(kScript));
    return policy;
}

} // namespace nv
