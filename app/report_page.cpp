#include "app/report_page.h"

#include <cstring>

#include "app/page.h"
#include "core/digest.h"
#include "qxview/version.h"

namespace qxview {
namespace {

// The colours of the dark form stand twice: for whom the system has dark, and for whom chose it.
#define QX_DARK_COLOURS \
  "color-scheme:dark;--back:#0f1216;--card:#171b21;--ink:#e8eaed;--soft:#9aa4b0;--rule:#2a3038;--accent:#5aa9f5;" \
  "--strong:#a9d1fb;--tint1:#1f2f42;--tint2:#264467;--tint3:#2f5f92;--tint4:#4488cc;--tint5:#74b8f8;--none:#1c2128;--bar:#20262e;}\n"

constexpr const char* kStyle =
    ":root{color-scheme:light;--back:#f4f5f7;--card:#fff;--ink:#1a1d21;--soft:#5b6570;--rule:#e1e5ea;--accent:#0b62b8;"
    "--strong:#084a8c;--tint1:#dbe9f8;--tint2:#b3d2f0;--tint3:#78aee2;--tint4:#3a86cc;--tint5:#0b5cab;--none:#f1f3f5;--bar:#eef1f4;}\n"
    "@media (prefers-color-scheme:dark){:root:not([data-theme=light]){" QX_DARK_COLOURS "}\n"
    ":root[data-theme=dark]{" QX_DARK_COLOURS
    R"css(*{box-sizing:border-box}
body{margin:0;background:var(--back);color:var(--ink);
font:15px/1.45 system-ui,-apple-system,"Segoe UI",Roboto,"Noto Sans",sans-serif;
font-variant-numeric:tabular-nums;-webkit-text-size-adjust:100%}
main,.top{max-width:1240px;margin:0 auto;padding:0 20px}
.top{display:flex;justify-content:space-between;align-items:center;padding-top:14px;color:var(--soft);font-size:13px}
h1{font-size:26px;line-height:1.2;margin:14px 0 4px;font-weight:650;letter-spacing:-.01em;overflow-wrap:anywhere}
h2{font-size:16px;margin:0 0 10px;font-weight:650}
h3{font-size:13px;margin:18px 0 4px;font-weight:600;color:var(--soft)}
a{color:var(--accent);text-decoration:none}a:hover{text-decoration:underline}
code{font:12.5px/1.45 ui-monospace,"SF Mono",Menlo,Consolas,"DejaVu Sans Mono",monospace;overflow-wrap:anywhere}
.zero{color:var(--soft);opacity:.7}
small{color:var(--soft);font-size:12.5px}
.files{list-style:none;margin:0 0 12px;padding:0;color:var(--soft);font-size:13px;overflow-wrap:anywhere}
.files code{font-size:11.5px}
nav{display:flex;flex-wrap:wrap;gap:2px 16px;margin:0 0 14px;padding:8px 0;border-top:1px solid var(--rule);
border-bottom:1px solid var(--rule);font-size:13.5px}
.sections{display:grid;grid-template-columns:repeat(2,minmax(0,1fr));gap:16px;margin-bottom:40px;align-items:start}
section{background:var(--card);border:1px solid var(--rule);border-radius:8px;padding:16px 18px;min-width:0;
scroll-margin-top:8px}
.stack{display:grid;gap:16px;min-width:0;grid-template-columns:minmax(0,1fr)}section.wide{grid-column:1/-1}
.tiles{display:grid;grid-template-columns:repeat(auto-fit,minmax(140px,1fr));gap:14px 20px;margin:0 0 14px}
.tile dt{color:var(--soft);font-size:12.5px}.tile dd{margin:0;font-size:23px;line-height:1.25;font-weight:600;
letter-spacing:-.01em}
.tile dd.more{font-size:12.5px;font-weight:400;color:var(--soft);letter-spacing:0}
.facts{display:grid;grid-template-columns:max-content 1fr;gap:2px 16px;margin:0;padding-top:12px;
border-top:1px solid var(--rule);font-size:13.5px}
.facts dt{color:var(--soft)}.facts dd{margin:0}
.key,.note,.empty{margin:0 0 6px;color:var(--soft);font-size:13px}
.note{margin-top:8px}.strong{color:var(--ink);font-weight:600}.empty{padding:10px 0}
.chart+.key{margin-top:14px}
.scroll{overflow-x:auto}
table{border-collapse:collapse;width:100%;font-size:13.5px}
th{font-weight:600;color:var(--soft);font-size:12px;text-align:left;padding:4px 8px 4px 0;
border-bottom:1px solid var(--rule);vertical-align:bottom;white-space:nowrap}
td{padding:4px 8px 4px 0;border-bottom:1px solid var(--rule);vertical-align:top}
tbody tr:last-child td{border-bottom:0}
tbody tr:hover{background:var(--none)}
th.r,td.r{text-align:right;padding-left:10px}td.r{white-space:nowrap}
th:last-child,td:last-child{padding-right:0}
td.t{overflow-wrap:anywhere}td.m{width:1%;white-space:nowrap;padding-right:18px}td.b{width:26%;min-width:70px;
padding-top:9px}
.long{display:-webkit-box;-webkit-box-orient:vertical;-webkit-line-clamp:2;overflow:hidden}
details{margin-top:6px}summary{cursor:pointer;color:var(--accent);font-size:13px;padding:4px 0}
.n{font:inherit;color:inherit;background:none;border:0;border-radius:2px;padding:0;cursor:pointer;
text-decoration:underline dotted;
text-decoration-color:color-mix(in srgb,var(--accent) 55%,transparent);text-underline-offset:3px;letter-spacing:inherit}
.n:hover{color:var(--accent);text-decoration-style:solid}
:focus-visible{outline:2px solid var(--accent);outline-offset:2px}
svg{display:block;overflow:hidden}svg+.scroll{margin-top:12px}
svg text{font:11px system-ui,-apple-system,"Segoe UI",Roboto,"Noto Sans",sans-serif;fill:var(--soft)}
svg .m{text-anchor:middle}svg .e{text-anchor:end}
svg text.in{font-size:12px;fill:var(--ink)}
svg text.name{font:11.5px ui-monospace,"SF Mono",Menlo,Consolas,"DejaVu Sans Mono",monospace;fill:var(--ink)}
.chart{display:flex}.chart .axis{flex:none}.chart .plot{flex:1;min-width:0}
.grid{stroke:var(--rule)}.base{stroke:var(--soft);opacity:.6}
.v{fill:var(--tint4)}.w{fill:var(--tint2)}.hit{fill:transparent}.none{fill:var(--none)}
.s1{fill:var(--tint1);background:var(--tint1)}.s2{fill:var(--tint2);background:var(--tint2)}.s3{fill:var(--tint3);
background:var(--tint3)}
.s4{fill:var(--tint4);background:var(--tint4)}.s5{fill:var(--tint5);background:var(--tint5)}
.l0,.l2{fill:var(--tint1);stroke:var(--card)}.l1,.l3{fill:var(--tint2);stroke:var(--card)}
.parts .v{fill:var(--tint5)}.parts{background:var(--bar);border-radius:2px}
g[data-w]{cursor:pointer}
g.bar:hover .hit{fill:var(--none)}g.bar:hover .v{fill:var(--strong)}g.cell:hover .v{stroke:var(--strong);stroke-width:2}
.swatch{display:inline-block;width:12px;height:12px;border-radius:2px;vertical-align:-1px;margin-left:4px}
.weight{white-space:nowrap;color:var(--soft);font-size:12.5px}.weight b{color:var(--accent)}.weight.fault{color:var(--ink);
font-weight:600}
)css"
    "TABLE_INDENTS"
    R"css(.theme{font:inherit;color:var(--soft);background:none;border:1px solid var(--rule);border-radius:6px;
padding:3px 10px;cursor:pointer}
#source{position:fixed;left:50%;bottom:14px;transform:translateX(-50%);width:min(920px,calc(100vw - 24px));
background:var(--card);
border:1px solid var(--accent);border-radius:8px;padding:10px 12px;box-shadow:0 6px 24px rgb(0 0 0/.22);font-size:13px}
#source p{margin:0 0 6px;display:flex;gap:12px;justify-content:space-between;color:var(--soft)}
#source pre{margin:0;white-space:pre-wrap;overflow-wrap:anywhere;max-height:30vh;overflow:auto}
#source button{font:inherit;color:var(--accent);background:none;border:0;padding:0 2px;cursor:pointer}
[hidden]{display:none!important}
@media (max-width:820px){.sections{grid-template-columns:minmax(0,1fr)}}
@media (max-width:620px){main,.top{padding-left:12px;padding-right:12px}section{padding:14px 12px}.x{display:none}
h1{font-size:21px}
.tiles{grid-template-columns:repeat(2,minmax(0,1fr))}.tile dd{font-size:19px}.facts{grid-template-columns:1fr}
.facts dd{margin-bottom:4px}}
@media print{:root,:root:not([data-theme=light]),:root[data-theme=dark]{color-scheme:light;--back:#fff;--card:#fff;
--ink:#000;--soft:#444;--rule:#ccc;
--accent:#0b62b8;--tint1:#dbe9f8;--tint2:#b3d2f0;--tint3:#78aee2;--tint4:#3a86cc;--tint5:#0b5cab;--none:#f4f4f4;--bar:#eee}
*{-webkit-print-color-adjust:exact;print-color-adjust:exact}body{font-size:11px}main,.top{max-width:none;padding:0}
nav,.theme,#source,details:not([open]){display:none!important}.n{text-decoration:none}.sections,.stack{display:block}
section{border:0;border-top:1px solid var(--rule);border-radius:0;padding:10px 0}h2,h3,.key{break-after:avoid}
svg,tr,.tiles{break-inside:avoid}
table{font-size:11px}small,code,th,.weight,.key,.note,.empty,.more{font-size:10px!important}
article+article{break-before:page}}
)css";

constexpr const char* kScript =
    R"js("use strict";(()=>{const root=document.documentElement,box=document.getElementById("source"),code=box.querySelector("code"),
told=box.querySelector("span"),quote=t=>"'"+t.replaceAll("'","'\\''")+"'";
const command=e=>{const a=e.closest("article").dataset,parts=[a.where,e.dataset.w].filter(p=>p);
const where=parts.length>1?parts.map(p=>"("+p+")").join(" and "):parts[0];return a.command+(where?" --where "+quote(where):"")};
const show=e=>{code.textContent=command(e);const n=Number(e.dataset.n).toLocaleString("en");
told.textContent=e.dataset.part?"The first "+n+" of these packets:":n+(n==="1"?" packet:":" packets:");box.hidden=false};
document.addEventListener("click",event=>{const e=event.target.closest("[data-n]");if(e)show(e)});
document.addEventListener("keydown",event=>{if(event.key==="Escape")box.hidden=true});
box.querySelector(".close").addEventListener("click",()=>{box.hidden=true});
box.querySelector(".copy").addEventListener("click",async event=>{const b=event.target;
const range=document.createRange();range.selectNodeContents(code);
const chosen=getSelection();chosen.removeAllRanges();chosen.addRange(range);
try{await navigator.clipboard.writeText(code.textContent)}catch{document.execCommand("copy")}
b.textContent="Copied";setTimeout(()=>{b.textContent="Copy"},1500)});
const theme=document.querySelector(".theme");theme.hidden=false;theme.addEventListener("click",()=>{
const dark=root.dataset.theme?root.dataset.theme==="dark":matchMedia("(prefers-color-scheme:dark)").matches;
root.dataset.theme=dark?"light":"dark"})})();
)js";

// How far names of the hierarchy stand in.
std::string Style() {
  std::string style = kStyle, indents;
  for (int32_t depth = 1; depth <= 12; ++depth) {
    indents += ".i" + std::to_string(depth) + "{padding-left:" + std::to_string(depth * 14) + "px}";
  }
  const std::string place = "TABLE_INDENTS";
  return style.replace(style.find(place), place.size(), indents + "\n");
}

// What a page's policy knows its script by.
std::string ScriptHash() {
  constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  uint8_t digest[kSha256Size + 1] = {};
  Sha256 hash;
  hash.Add({reinterpret_cast<const uint8_t*>(kScript), static_cast<int32_t>(std::strlen(kScript))});
  hash.Finish(digest);
  std::string text;
  for (size_t at = 0; at < kSha256Size; at += 3) {   // base64: two bytes are left in the end
    const uint32_t bits = digest[at] << 16 | digest[at + 1] << 8 | (at + 2 < kSha256Size ? digest[at + 2] : 0);
    for (int32_t shift = 18; shift >= 0; shift -= 6) text += kDigits[bits >> shift & 0x3F];
  }
  text.back() = '=';
  return text;
}

}  // namespace

std::string PageHead(const std::string& title, const std::vector<std::string>& names) {
  std::string head =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width,initial-scale=1\">\n"
      // Whatever a capture smuggled in: nothing is loaded, and no script runs that is not this page's own.
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none';style-src 'unsafe-inline';"
      "img-src data:;script-src 'sha256-";
  head += ScriptHash() + "'\">\n"
      "<meta name=\"generator\" content=\"qxview " QXVIEW_VERSION_TEXT "\">\n<link rel=\"icon\" href=\"data:,\">\n<title>";
  head += EscapeHtml(title) + "</title>\n<style>\n" + Style() + "</style>\n</head>\n<body>\n";
  head += "<div class=\"top\"><span>Capture report</span><button type=\"button\" class=\"theme\" hidden>Light or dark</button></div>\n<main>\n";
  if (names.size() < 2) return head;
  head += "<nav aria-label=\"Captures\">";
  for (size_t i = 0; i < names.size(); ++i) head += "<a href=\"#c" + std::to_string(i + 1) + "\">" + EscapeHtml(names[i]) + "</a>";
  return head + "</nav>\n";
}

std::string PageFoot() {
  return std::string(
             "</main>\n<aside id=\"source\" hidden><p><span></span><span class=\"keys\"><button type=\"button\" class=\"copy\">Copy</button> "
             "<button type=\"button\" class=\"close\">Close</button></span></p><pre><code></code></pre></aside>\n<script>") +
         kScript + "</script>\n</body>\n</html>\n";
}

}  // namespace qxview
