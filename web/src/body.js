// The message's body made safe to show. HTML goes into a sandboxed frame
// (no scripts, no plugins, no forms, no navigation of the page) through
// `srcdoc`, under a content security policy that allows no script and no
// network load; before that, everything that could still reach the network
// on its own or on a click (links, refreshes, remote images, frames) is
// taken out.

// Inside the frame: inline styles and images from data: URLs, nothing else.
export const FRAME_POLICY =
  "default-src 'none'; style-src 'unsafe-inline'; img-src data:; font-src data:";

const REMOTE = /^\s*(?!data:|cid:|#)[a-z][a-z0-9+.-]*:|^\s*\/\//i;

// Elements that load or run something and have no place in a shown body.
const REMOVED = 'script, noscript, iframe, frame, frameset, object, embed, applet, base, link, meta, ' +
  'form, portal, audio, video, source, track';

function quietLinks(doc) {
  for (const link of doc.querySelectorAll('a[href], area[href]')) {
    const target = link.getAttribute('href');
    link.removeAttribute('href');
    if (!/^\s*#/.test(target)) link.setAttribute('title', target);
  }
}

function quietImages(doc, images) {
  for (const element of doc.querySelectorAll('[src], [srcset], [background], [poster]')) {
    element.removeAttribute('srcset');
    element.removeAttribute('background');
    element.removeAttribute('poster');
    const source = element.getAttribute('src');
    if (source === null) continue;
    const id = /^\s*cid:(.*)$/i.exec(source);
    const inline = id ? images(decodeURIComponent(id[1]).trim()) : null;
    if (inline) {
      element.setAttribute('src', inline);
    } else if (REMOTE.test(source) || id) {
      element.removeAttribute('src');
      element.setAttribute('data-blocked-source', source);
    }
  }
}

// CSS functions that load what they name.
const CSS_REFERENCE = /(url|image-set|image|cross-fade|src)\s*\(/i;

// Whether a declaration's value (as the CSS object model writes it, with
// every reference as url("...") or a quoted string) loads from anywhere
// but a data: URL.
function loadsRemotely(value) {
  if (!CSS_REFERENCE.test(value)) return false;
  const targets = [...value.matchAll(/url\(\s*"((?:[^"\\]|\\.)*)"|"((?:[^"\\]|\\.)*)"/g)]
    .map((m) => m[1] ?? m[2]);
  return targets.length === 0 || targets.some((target) => !/^data:/i.test(target));
}

function quietDeclarations(style) {
  for (const property of [...style]) {
    if (loadsRemotely(style.getPropertyValue(property))) style.removeProperty(property);
  }
}

function quietRules(rules) {
  for (const rule of rules) {
    if (rule.style) quietDeclarations(rule.style);
    if (rule.cssRules) quietRules(rule.cssRules);
  }
}

// Style sheets and style attributes keep everything but what would load;
// @import goes, as a constructed sheet drops it.
function quietStyles(doc) {
  for (const element of doc.querySelectorAll('style')) {
    const sheet = new CSSStyleSheet();
    sheet.replaceSync(element.textContent);
    quietRules(sheet.cssRules);
    element.textContent = [...sheet.cssRules].map((rule) => rule.cssText).join('\n');
  }
  for (const element of doc.querySelectorAll('[style]')) quietDeclarations(element.style);
  for (const element of doc.querySelectorAll('[href], [*|href]')) {
    element.removeAttribute('href');
    element.removeAttributeNS('http://www.w3.org/1999/xlink', 'href');
  }
}

function withoutHandlers(doc) {
  for (const element of doc.querySelectorAll('*')) {
    for (const attribute of [...element.attributes]) {
      if (/^on/i.test(attribute.name)) element.removeAttribute(attribute.name);
    }
  }
}

// The srcdoc of a frame showing `html`. `images(contentId)` gives a data:
// URL for an inline image the message carries, or null.
export function frameDocument(html, images = () => null) {
  const doc = new DOMParser().parseFromString(html, 'text/html');
  for (const element of doc.querySelectorAll(REMOVED)) element.remove();
  quietLinks(doc);
  quietImages(doc, images);
  quietStyles(doc);
  withoutHandlers(doc);
  const policy = doc.createElement('meta');
  policy.setAttribute('http-equiv', 'Content-Security-Policy');
  policy.setAttribute('content', FRAME_POLICY);
  const charset = doc.createElement('meta');
  charset.setAttribute('charset', 'utf-8');
  const colours = doc.createElement('meta');
  colours.setAttribute('name', 'color-scheme');
  colours.setAttribute('content', 'light');
  doc.head.prepend(policy, charset, colours);
  return '<!DOCTYPE html>' + doc.documentElement.outerHTML;
}

// The charset an HTML document names in its first bytes, if any.
export function declaredCharset(bytes) {
  const head = new TextDecoder('latin1').decode(bytes.subarray(0, 2048));
  const match = /<meta[^>]+charset\s*=\s*["']?\s*([a-z0-9_.:-]+)/i.exec(head);
  return match ? match[1] : null;
}
