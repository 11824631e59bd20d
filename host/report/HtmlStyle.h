#pragma once

namespace host {

/// The style serves screens of any width and paper. Tables and pictures that are wider than a screen scroll
/// on their own, with the first column of a table in place and a shadow at the side that has more.
inline constexpr const char* HTML_STYLE = R"(
:root { color-scheme: light; }
body { margin: 0 auto; max-width: 60rem; padding: 1rem; color: #222; background: #fff;
  font: 1rem/1.5 system-ui, sans-serif; }
h1 { font-size: 1.6rem; line-height: 1.25; margin: 0.5rem 0; }
h2 { font-size: 1.2rem; margin: 2rem 0 0.5rem; padding-bottom: 0.2rem; border-bottom: 1px solid #ccc; }
h1, h2 { overflow-wrap: break-word; }
p { margin: 0.5rem 0; max-width: 45rem; overflow-wrap: break-word; }
a { color: #0b4f8a; }
:focus-visible { outline: 3px solid #c2410c; outline-offset: 1px; }
.skip { position: absolute; left: -100rem; }
.skip:focus { left: 1rem; top: 0.5rem; padding: 0.5rem; background: #fff; z-index: 3; }
nav { border: 1px solid #ccc; padding: 0.3rem 0.7rem; margin: 0.7rem 0; }
summary { font-weight: 600; padding: 0.3rem 0; }
nav ul { list-style: none; margin: 0.3rem 0; padding: 0; }
nav a { display: block; padding: 0.15rem 0; }
section { scroll-margin-top: 0.5rem; }
section:first-child p { font-size: 1.1rem; }
.scroll { overflow-x: auto; background: linear-gradient(to right, #fff 2rem, #fff0) 0 0 / 4rem 100% no-repeat local,
  linear-gradient(to left, #fff 2rem, #fff0) 100% 0 / 4rem 100% no-repeat local,
  linear-gradient(to right, #0004, #0000) 0 0 / 0.7rem 100% no-repeat scroll,
  linear-gradient(to left, #0004, #0000) 100% 0 / 0.7rem 100% no-repeat scroll; }
caption { white-space: nowrap; }
table { border-collapse: collapse; font-size: 0.9rem; font-variant-numeric: tabular-nums; }
caption, figcaption { text-align: left; font-size: 0.9rem; color: #555; padding: 0.2rem 0; }
th, td { padding: 0.2rem 0.7rem 0.2rem 0; text-align: right; white-space: pre; font-weight: normal;
  border-bottom: 1px solid #e4e8ec; }
thead th { border-bottom: 2px solid #222; font-weight: 600; vertical-align: bottom; }
th.text, td.text { text-align: left; white-space: normal; max-width: 24rem; }
th[scope=row] { position: sticky; left: 0; background: #fff; min-width: 5rem; }
thead th.text:first-child { position: sticky; left: 0; background: #fff; }
tr.pooled > * { font-weight: 600; }
.option { white-space: nowrap; }
#settings th { white-space: nowrap; max-width: none; }
th button { font: inherit; color: inherit; text-align: inherit; white-space: inherit; background: none;
  border: 0; padding: 0 0.1rem; margin: 0; min-height: 1.5rem; cursor: pointer; }
th button::after { content: '\2195'; color: #666; padding-left: 0.2rem; }
th[aria-sort=ascending] button::after { content: '\2191'; color: #222; }
th[aria-sort=descending] button::after { content: '\2193'; color: #222; }
figure { margin: 1.5rem 0; }
figure svg { display: block; width: 100%; min-width: 34rem; height: auto; }
pre { background: #f4f6f8; padding: 0.7rem; white-space: pre-wrap; overflow-wrap: break-word; font-size: 0.85rem; }
.paper { display: none; }
@media (max-width: 40rem) {
  body { padding: 0.7rem; }
  table { font-size: 0.8rem; }
  th, td { padding-right: 0.4rem; }
  th[scope=row], thead th.text:first-child { max-width: 8rem; }
}
@media screen and (min-width: 75rem) {
  body { max-width: 76rem; display: grid; grid-template-columns: 14rem minmax(0, 1fr); column-gap: 2rem; }
  header { grid-column: 1 / 3; }
  nav { align-self: start; position: sticky; top: 1rem; max-height: 95vh; overflow-y: auto; }
}
@media print {
  @page { margin: 1.5cm; }
  body { max-width: none; padding: 0; font-size: 10pt; }
  nav, .skip, th button::after { display: none; content: none; }
  .scroll { overflow: visible; background: none; max-width: none !important; }
  table { font-size: 8pt; }
  th, td { padding-right: 0.4rem; }
  th[scope=row], thead th.text:first-child { position: static; }
  thead { display: table-header-group; }
  tr, figure { break-inside: avoid; }
  h2, caption, thead, tbody tr:nth-child(-n+2):not(:last-child) { break-after: avoid; }
  p { orphans: 3; widows: 3; }
  figure svg { min-width: 0; max-height: 10cm; }
  figure.tall svg { max-height: 23cm; }
  figure.sliced { break-inside: auto; }
  figure.sliced .scroll { display: none; }
  .paper { display: block; }
  .paper div { break-inside: avoid; }
  .paper svg { max-height: none; }
  .paper + figcaption { break-before: avoid; }
}
)";

} // namespace host
