// Opens a page in headless Chromium as wide as a desk and as a phone, and prints it.
//   node browser_check.mjs MODULES PAGE.html FOLDER
// Writes wide.png, narrow.png and page.pdf into the folder. Ends with status 1 when the page writes to its
// console, breaks a rule of axe-core (WCAG 2.1 A and AA, best practices), is wider than the screen, or when
// its tables cannot be sorted by keyboard.
import { createRequire } from 'node:module';
import { readFileSync } from 'node:fs';
import { join, resolve } from 'node:path';
import { pathToFileURL } from 'node:url';

const [modules, page, folder] = process.argv.slice(2);
const require = createRequire(join(resolve(modules), 'node_modules', '/'));
const { chromium } = require('playwright-core');
const axe = readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8');
const address = pathToFileURL(resolve(page)).href;
const failures = [];
const expect = (holds, failure) => { if (!holds) failures.push(failure); };

async function open(browser, width) {
  const tab = await browser.newPage({ viewport: { width, height: 800 } });
  tab.on('console', message => failures.push(`console: ${message.text()}`));
  tab.on('pageerror', error => failures.push(`script: ${error.message}`));
  tab.on('request', request => expect(request.url() === address, `loads ${request.url()}`));
  await tab.goto(address);
  return tab;
}

async function checkRules(tab, place) {
  await tab.evaluate(axe);
  const found = await tab.evaluate(() => axe.run({ runOnly: ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'best-practice'] }));
  expect(found.passes.length > 20, `${place}: axe-core tried only ${found.passes.length} rules`);
  for (const rule of found.violations)
    failures.push(`${place}: ${rule.id}: ${rule.help}: ${rule.nodes.map(node => node.html.slice(0, 200)).join(' | ')}`);
}

// Each press of the button sorts the rows anew: up, down, as they were. The expected order is that of the
// numbers at the start of the cells.
async function checkSorting(tab) {
  const table = tab.locator('#studies table');
  const texts = () => table.locator('tbody td:nth-child(2)').allTextContents();
  const numbers = async () => (await texts()).map(text => Number.parseFloat(text.trim().replace('\u2212', '-')));
  const button = table.locator('thead th:nth-child(2) button');
  const original = await texts();
  const ascending = (await numbers()).sort((a, b) => a - b);
  await button.focus();
  for (const [key, order, expected] of [['Enter', 'ascending', ascending], ['Space', 'descending', [...ascending].reverse()]]) {
    await tab.keyboard.press(key);
    expect(await table.locator('th[aria-sort]').getAttribute('aria-sort') === order, `aria-sort is not ${order}`);
    expect(String(await numbers()) === String(expected), `rows are not ${order}: ${await numbers()}`);
  }
  await tab.keyboard.press('Enter');
  expect(String(await texts()) === String(original), 'the third press does not restore the order');
}

// The first key brings the link over the contents, which leads to the result.
async function checkSkipLink(tab) {
  await tab.keyboard.press('Tab');
  await tab.keyboard.press('Enter');
  expect(await tab.evaluate(() => document.activeElement.id) === 'main', 'the skip link does not lead to the result');
}

const widthOf = tab => tab.evaluate(() => document.documentElement.scrollWidth);
// The right end of the first estimate of each study, on a screen that nothing was scrolled on.
const estimateEnd = tab => tab.locator('#studies tbody tr:first-child td:not(.text)').first()
  .evaluate(cell => { const range = document.createRange(); range.selectNodeContents(cell); return range.getBoundingClientRect().right; });

const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox', '--disable-gpu'] });
try {
  for (const [name, width] of [['wide', 1280], ['narrow', 360]]) {
    const tab = await open(browser, width);
    expect(await widthOf(tab) <= width, `the page is wider than a screen of ${width} pixels`);
    expect(await estimateEnd(tab) <= width, `estimates do not fit a screen of ${width} pixels`);
    await checkSkipLink(tab);
    await checkRules(tab, name);
    await checkSorting(tab);
    await checkRules(tab, `${name}, sorted`);
    await tab.screenshot({ path: join(folder, `${name}.png`), fullPage: true });
    if (name === 'wide')
      await tab.pdf({ path: join(folder, 'page.pdf'), format: 'A4' });
    await tab.close();
  }
} finally {
  await browser.close();
}
failures.forEach(failure => console.error(failure));
process.exitCode = failures.length === 0 ? 0 : 1;
