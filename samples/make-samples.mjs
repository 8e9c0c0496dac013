// Scrolls the pages of this folder in headless Chromium and keeps what it shows: the captures of each
// sequence, its true picture, and the true motion between the captures.
//   npm install && npm run make        (Chromium from $CHROMIUM, or /usr/bin/chromium)
import {mkdir, rm, writeFile} from 'node:fs/promises';
import {dirname, join} from 'node:path';
import {fileURLToPath, pathToFileURL} from 'node:url';
import {chromium} from 'playwright-core';

const folder = dirname(fileURLToPath(import.meta.url));

// A scroll position that stands twice is a pause: its second capture repeats the first.
const sequences = [
  {
    name: 'article',
    viewport: [800, 600],
    orientation: 'vertical',
    scroll: [[0, 0], [0, 270], [0, 590], [0, 590], [0, 840], [0, 1180], [0, 1440], [0, 1738]],
  },
  {
    // A slanted seam gives up one line of pixels along two borders of its capture. Here the captures
    // before and after a slanted step show those pixels as well, so that nothing is missing.
    name: 'map',
    viewport: [640, 480],
    orientation: 'both',
    scroll: [[60, 90], [60, 250], [260, 130], [460, 130], [650, 230], [860, 230]],
  },
  {
    // Starts with a dark band right below the toolbar and stops once with one right above the status
    // bar (590), so that the change between two captures reaches both.
    name: 'toolbar',
    viewport: [800, 600],
    orientation: 'vertical',
    scroll: [[0, 0], [0, 200], [0, 430], [0, 590], [0, 842]],
    fixed: {top: 52, bottom: 30, left: 0, right: 0},
  },
];

const extent = (values, length) =>
    [Math.min(...values), Math.max(...values) + length];

/** The page as one picture, from the first column and row that the captures show to the last. */
async function trueRegion(page, {viewport: [width, height], scroll}) {
  const [left, right] = extent(scroll.map(([x]) => x), width);
  const [top, bottom] = extent(scroll.map(([, y]) => y), height);
  await page.setViewportSize({width: right - left, height: bottom - top});
  await page.evaluate(([x, y]) => window.scrollTo(x, y), [left, top]);
  return {left, top, picture: await page.screenshot()};
}

/** The picture with everything transparent that no capture shows. */
async function keepWhatCapturesShow(page, {left, top, picture}, {viewport, scroll}) {
  const url = await page.evaluate(async ({source, left, top, viewport: [width, height], scroll}) => {
    const image = new Image();
    image.src = source;
    await image.decode();
    const canvas = document.createElement('canvas');
    [canvas.width, canvas.height] = [image.width, image.height];
    const context = canvas.getContext('2d');
    for (const [x, y] of scroll) {
      const block = [x - left, y - top, width, height];
      context.drawImage(image, ...block, ...block);
    }
    return canvas.toDataURL('image/png');
  }, {source: `data:image/png;base64,${picture.toString('base64')}`, left, top, viewport, scroll});
  return Buffer.from(url.split(',')[1], 'base64');
}

async function makeSequence(browser, sequence) {
  const {name, viewport: [width, height], scroll} = sequence;
  const target = join(folder, name);
  const captures = join(target, 'captures');
  await rm(captures, {recursive: true, force: true});
  await mkdir(captures, {recursive: true});

  const page = await browser.newPage({viewport: {width, height}});
  await page.goto(pathToFileURL(join(target, 'page.html')).href);
  for (const [index, [x, y]] of scroll.entries()) {
    await page.evaluate(([x, y]) => window.scrollTo(x, y), [x, y]);
    const file = `capture-${String(index).padStart(3, '0')}.png`;
    await page.screenshot({path: join(captures, file)});
  }
  const region = await trueRegion(page, sequence);
  await writeFile(join(target, 'truth.png'), await keepWhatCapturesShow(page, region, sequence));
  await page.close();

  const motions = scroll.slice(1).map(([x, y], i) => [scroll[i][1] - y, scroll[i][0] - x]);
  const description = {
    name,
    viewport: [width, height],
    orientation: sequence.orientation,
    scroll,
    translations: motions,
    fixed: sequence.fixed ?? {top: 0, bottom: 0, left: 0, right: 0},
    duplicates: motions.flatMap(([rows, cols], i) => rows === 0 && cols === 0 ? [i + 1] : []),
  };
  await writeFile(join(target, 'sequence.json'), `${JSON.stringify(description, null, 2)}\n`);
}

const browser = await chromium.launch({
  executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
  args: [
    '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
    '--disable-background-networking', '--disable-component-update', '--disable-sync',
    '--disable-lcd-text', '--font-render-hinting=none', '--hide-scrollbars',
  ],
});
try {
  for (const sequence of sequences) {
    await makeSequence(browser, sequence);
  }
} finally {
  await browser.close();
}
