#pragma once

namespace host {

/// What the page can do beyond showing itself: rows are sorted by the buttons that it puts into the headers
/// of tables with three rows or more, and the contents are open where the screen has room for them. A row of
/// all studies stays last, and so does a cell without a value. The comments let parsers of XML read
/// the page as well.
inline constexpr const char* HTML_SCRIPT = R"(//<![CDATA[
'use strict';
const valueOf = (row, column) => row.cells[column].textContent.trim();
const numberIn = text => {
  const found = text.replace(/\u2212/g, '-').match(/[+-]?(\d+\.?\d*|\.\d+|inf)(e[+-]?\d+)?/i);
  return found ? Number(found[0].replace(/inf/i, 'Infinity')) : NaN;
};
const compareTexts = (a, b) => a.localeCompare(b, 'en', { numeric: true });
const compareNumbers = (a, b) => a < b ? -1 : a > b ? 1 : 0;
function sortRows(body, rows, column, isText, direction) {
  const pooled = row => row.classList.contains('pooled') ? 1 : 0;
  const keyed = rows.map((row, position) => {
    const text = valueOf(row, column);
    const key = isText ? text : numberIn(text);
    const missing = isText ? text === '-' || text === '' : Number.isNaN(key);
    const below = !isText && text.startsWith('<') ? -1 : 0;
    return { row, position, key, below, last: pooled(row) * 2 + (missing ? 1 : 0), missing };
  });
  keyed.sort((a, b) => {
    if (direction === 0) return a.position - b.position;
    if (a.last !== b.last) return a.last - b.last;
    if (a.missing) return a.position - b.position;
    const order = isText ? compareTexts(a.key, b.key) : compareNumbers(a.key, b.key) || a.below - b.below;
    return direction * order || a.position - b.position;
  });
  body.append(...keyed.map(entry => entry.row));
}
const NEXT = { none: 'ascending', ascending: 'descending', descending: 'none' };
const DIRECTION = { none: 0, ascending: 1, descending: -1 };
for (const table of document.querySelectorAll('table')) {
  const body = table.tBodies[0];
  const rows = Array.from(body.rows);
  if (rows.length < 3) continue;
  const headers = Array.from(table.tHead.rows[0].cells);
  headers.forEach((header, column) => {
    if (header.tagName !== 'TH') return;
    const button = document.createElement('button');
    button.type = 'button';
    button.append(...header.childNodes);
    header.append(button);
    button.addEventListener('click', () => {
      const order = NEXT[header.getAttribute('aria-sort') || 'none'];
      headers.forEach(other => other.removeAttribute('aria-sort'));
      if (order !== 'none') header.setAttribute('aria-sort', order);
      sortRows(body, rows, column, header.classList.contains('text'), DIRECTION[order]);
    });
  });
}
const wide = window.matchMedia('(min-width: 75rem)');
const contents = document.querySelector('nav details');
const showContents = () => { contents.open = wide.matches; };
showContents();
wide.addEventListener('change', showContents);
//]]>
)";

/// By this hash of the script, in base64, the security policy of the page lets it run and no other. A
/// browser that finds another hash says which on its console.
inline constexpr const char* HTML_SCRIPT_SHA256 = "Clklzdb5tPA40q2HLeuOj4A665pF9FUnO7DlUNE7bgA=";

} // namespace host
