// How the viewer's tests and benchmark start Debian's Chromium: headless,
// with nothing running in the background that could reach the network on
// its own. Playwright gives every launch a fresh profile.
export const CHROMIUM_ARGS = ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic',
  '--no-first-run', '--disable-background-networking', '--disable-component-update', '--disable-sync'];

export const CHROMIUM = { executablePath: '/usr/bin/chromium', args: CHROMIUM_ARGS };
