#pragma once

namespace host {

/// The style serves screens of any width and paper. Tables and pictures that are wider than a screen scroll
/// on their own.
inline constexpr const char* HTML_STYLE = R"(
:root { color-scheme: light; }
body { margin: 0 auto; max-width: 60rem; padding: 1rem; color: #222; background: #fff;
  font: 1rem/1.5 system-ui, sans-serif; }
h1 { font-size: 1.6rem; line-height: 1.25; margin: 0.5rem 0; }
h2 { font-size: 1.2rem; margin: 2rem 0 0.5rem; padding-bottom: 0.2rem; border-bottom: 1px solid #ccc; }
p { margin: 0.5rem 0; max-width: 45rem; overflow-wrap: anywhere; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; font-size: 0.9rem; font-variant-numeric: tabular-nums; }
caption { white-space: nowrap; }
caption, figcaption { text-align: left; font-size: 0.9rem; color: #555; padding: 0.2rem 0; }
th, td { padding: 0.2rem 0.7rem 0.2rem 0; text-align: right; white-space: pre; font-weight: normal; }
thead th { border-bottom: 2px solid #222; font-weight: 600; vertical-align: bottom; }
tbody tr:nth-child(even) { background: #f4f6f8; }
th.text, td.text { text-align: left; white-space: normal; min-width: 6rem; max-width: 24rem;
  overflow-wrap: anywhere; }
figure { margin: 1.5rem 0; }
figure svg { display: block; width: 100%; min-width: 34rem; height: auto; }
pre { background: #f4f6f8; padding: 0.7rem; white-space: pre-wrap; overflow-wrap: anywhere; font-size: 0.85rem; }
.paper { display: none; }
@media print {
  @page { margin: 1.5cm; }
  body { max-width: none; padding: 0; font-size: 10pt; }
  .scroll { overflow: visible; }
  table { font-size: 8.5pt; }
  th, td { padding-right: 0.5rem; }
  thead { display: table-header-group; }
  tr, figure { break-inside: avoid; }
  h2, caption, thead, tbody tr:nth-child(-n+2) { break-after: avoid; }
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
