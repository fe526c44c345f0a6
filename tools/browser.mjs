// A headless Chromium, driven by the DevTools protocol over a pipe.

import {spawn} from "node:child_process";
import {mkdtempSync, rmSync} from "node:fs";
import {tmpdir} from "node:os";
import {join} from "node:path";

const kPatience = 60000;  // milliseconds

export class Browser {
  constructor(program = process.env.CHROMIUM ?? "chromium") {
    this.folder = mkdtempSync(join(tmpdir(), "mira-report-"));
    this.process = spawn(program, [
      "--headless=new", "--no-sandbox", "--disable-gpu", "--hide-scrollbars", "--no-first-run",
      "--disable-background-networking", "--disable-component-update", "--disable-sync",
      "--force-color-profile=srgb", "--font-render-hinting=none", "--remote-debugging-pipe",
      `--user-data-dir=${this.folder}`, "about:blank",
    ], {stdio: ["ignore", "ignore", "ignore", "pipe", "pipe"]});
    this.last = 0;
    this.waiting = new Map();
    this.listeners = [];
    let rest = "";
    this.process.stdio[4].setEncoding("utf8").on("data", (chunk) => {
      const messages = (rest + chunk).split("\0");
      rest = messages.pop();
      for (const message of messages) this.#take(JSON.parse(message));
    });
    this.ended = new Promise((resolve) => this.process.on("exit", resolve));
  }

  #take(message) {
    if (message.id === undefined) {
      for (const listener of this.listeners) listener(message);
      return;
    }
    const {resolve, reject, method} = this.waiting.get(message.id);
    this.waiting.delete(message.id);
    if (message.error) reject(new Error(`${method}: ${message.error.message}`));
    else resolve(message.result);
  }

  send(method, params = {}, sessionId = undefined) {
    const id = ++this.last;
    this.process.stdio[3].write(JSON.stringify({id, method, params, sessionId}) + "\0");
    return new Promise((resolve, reject) => {
      const timer = setTimeout(() => reject(new Error(`${method}: no answer`)), kPatience);
      const done = (action) => (value) => { clearTimeout(timer); action(value); };
      this.waiting.set(id, {resolve: done(resolve), reject: done(reject), method});
    });
  }

  async open(path, setUp = async () => {}) {
    const {targetId} = await this.send("Target.createTarget", {url: "about:blank"});
    const {sessionId} = await this.send("Target.attachToTarget", {targetId, flatten: true});
    const page = new Page(this, targetId, sessionId);
    for (const domain of ["Page", "Runtime", "Log", "Network"]) await page.send(`${domain}.enable`);
    await setUp(page);
    const loaded = page.until("Page.loadEventFired");
    await page.send("Page.navigate", {url: `file://${path}`});
    await loaded;
    return page;
  }

  async close() {
    this.process.kill();
    await this.ended;
    rmSync(this.folder, {recursive: true, force: true, maxRetries: 5, retryDelay: 200});
  }
}

class Page {
  constructor(browser, targetId, sessionId) {
    this.browser = browser;
    this.targetId = targetId;
    this.sessionId = sessionId;
    this.complaints = [];  // what the console, the policy or a script complained of
    this.requests = [];
    browser.listeners.push((message) => {
      if (message.sessionId !== sessionId) return;
      const {method, params} = message;
      if (method === "Log.entryAdded") this.complaints.push(params.entry.text);
      if (method === "Runtime.consoleAPICalled") this.complaints.push(`console.${params.type}`);
      if (method === "Runtime.exceptionThrown") this.complaints.push(params.exceptionDetails.text);
      if (method === "Page.javascriptDialogOpening") this.complaints.push("a dialog");
      if (method === "Network.requestWillBeSent") this.requests.push(params.request.url);
    });
  }

  send(method, params = {}) {
    return this.browser.send(method, params, this.sessionId);
  }

  until(method) {
    return new Promise((resolve, reject) => {
      const timer = setTimeout(() => reject(new Error(`${method} did not come`)), kPatience);
      this.browser.listeners.push((message) => {
        if (message.sessionId !== this.sessionId || message.method !== method) return;
        clearTimeout(timer);
        resolve(message.params);
      });
    });
  }

  // The value of an expression in the page.
  async ask(expression) {
    const {result, exceptionDetails} = await this.send("Runtime.evaluate", {
      expression, returnByValue: true, awaitPromise: true,
    });
    if (exceptionDetails) {
      throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
    }
    return result.value;
  }

  async press(key, code = key, text = undefined) {
    const windowsVirtualKeyCode = {Tab: 9, Escape: 27, Enter: 13, " ": 32}[key];
    const event = {key, code, text, windowsVirtualKeyCode};
    await this.send("Input.dispatchKeyEvent", {type: text ? "keyDown" : "rawKeyDown", ...event});
    await this.send("Input.dispatchKeyEvent", {type: "keyUp", ...event});
  }

  async type(text) {
    for (const letter of text) await this.press(letter, letter, letter);
  }

  look(width, theme, height = 900) {
    return Promise.all([
      this.send("Emulation.setDeviceMetricsOverride",
        {width, height, deviceScaleFactor: 1, mobile: false}),
      this.send("Emulation.setEmulatedMedia",
        {media: "", features: [{name: "prefers-color-scheme", value: theme}]}),
    ]);
  }

  // A picture as PNG: of what is in sight, or of the whole page.
  async picture(whole = false) {
    const {data} = await this.send("Page.captureScreenshot",
      {format: "png", captureBeyondViewport: whole});
    return Buffer.from(data, "base64");
  }

  close() {
    return this.browser.send("Target.closeTarget", {targetId: this.targetId});
  }
}
