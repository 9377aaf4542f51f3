// Pan, zoom and choose in the picture.  Without this script the picture scrolls, and its tables are
// links.
"use strict";
(() => {
  const frame = document.querySelector(".picture");
  const svg = frame && frame.querySelector("svg");
  if (!svg) {
    return;
  }
  const whole = svg.viewBox.baseVal;
  const all = { x: whole.x, y: whole.y, width: whole.width, height: whole.height };
  const least = 0.05, most = 4;
  let scale = 1, x = all.x, y = all.y; // of the corner at the top left

  function show() {
    svg.setAttribute("viewBox", [x, y, frame.clientWidth / scale, frame.clientHeight / scale].join(" "));
  }
  function zoom(factor, atX, atY) {
    const next = Math.min(most, Math.max(least, scale * factor));
    x += atX / scale - atX / next;
    y += atY / scale - atY / next;
    scale = next;
    show();
  }
  function zoomMiddle(factor) {
    zoom(factor, frame.clientWidth / 2, frame.clientHeight / 2);
  }
  function pan(right, down) {
    x += right / scale;
    y += down / scale;
    show();
  }
  // All of it, but never larger than it is drawn.
  function fit(smallest) {
    const wanted = Math.min(frame.clientWidth / all.width, frame.clientHeight / all.height);
    scale = Math.max(smallest, Math.min(1, wanted));
    x = all.x - Math.max(0, frame.clientWidth / scale - all.width) / 2;
    y = all.y - Math.max(0, frame.clientHeight / scale - all.height) / 2;
    show();
  }

  const first = Math.max(0.6, Math.min(1, frame.clientWidth / all.width));
  const room = Math.max(260, window.innerHeight * 0.72);
  frame.style.height = Math.min(all.height * first + 2, room) + "px";
  svg.setAttribute("width", "100%");
  svg.setAttribute("height", "100%");
  frame.classList.add("live");
  fit(0.6);

  const tools = document.createElement("div");
  tools.className = "tools";
  for (const [name, label, act] of [
    ["+", "Zoom in", () => zoomMiddle(1.3)],
    ["−", "Zoom out", () => zoomMiddle(1 / 1.3)],
    ["Whole", "Show the whole picture", () => fit(least)],
  ]) {
    const button = document.createElement("button");
    button.type = "button";
    button.textContent = name;
    button.setAttribute("aria-label", label);
    button.addEventListener("click", act);
    tools.append(button);
  }
  frame.before(tools);

  frame.addEventListener("wheel", (event) => {
    if (!event.ctrlKey && !event.metaKey) {
      return; // the page scrolls
    }
    event.preventDefault();
    const at = frame.getBoundingClientRect();
    zoom(Math.exp(-event.deltaY / 300), event.clientX - at.left, event.clientY - at.top);
  }, { passive: false });

  let held = null, moved = false;
  frame.addEventListener("pointerdown", (event) => {
    if (event.button === 0 && event.pointerType !== "touch") {
      held = { x: event.clientX, y: event.clientY };
      moved = false;
    }
  });
  window.addEventListener("pointermove", (event) => {
    if (!held) {
      return;
    }
    const right = held.x - event.clientX, down = held.y - event.clientY;
    if (moved || Math.hypot(right, down) > 4) {
      moved = true;
      frame.classList.add("dragged");
      pan(right, down);
      held = { x: event.clientX, y: event.clientY };
    }
  });
  window.addEventListener("pointerup", () => {
    held = null;
    frame.classList.remove("dragged");
  });
  frame.addEventListener("dragstart", (event) => event.preventDefault());
  frame.addEventListener("click", (event) => {
    if (moved) {
      event.preventDefault(); // the end of a drag is no click
      moved = false;
    }
  }, true);

  frame.addEventListener("keydown", (event) => {
    const keys = {
      ArrowLeft: () => pan(-60, 0), ArrowRight: () => pan(60, 0),
      ArrowUp: () => pan(0, -60), ArrowDown: () => pan(0, 60),
      "+": () => zoomMiddle(1.3), "-": () => zoomMiddle(1 / 1.3), 0: () => fit(least),
    };
    if (event.target === frame && !event.ctrlKey && !event.metaKey && keys[event.key]) {
      event.preventDefault();
      keys[event.key]();
    }
  });

  // The arrows of the table that is pointed at or has the focus, and of the one that was clicked.
  function choose(id) {
    for (const arrow of svg.querySelectorAll(".arrow")) {
      arrow.classList.toggle("chosen", arrow.dataset.from === id || arrow.dataset.to === id);
    }
    for (const table of svg.querySelectorAll("a")) {
      table.classList.toggle("chosen", table.dataset.table === id);
    }
  }
  let clicked = null;
  for (const table of svg.querySelectorAll("a")) {
    const id = table.dataset.table;
    for (const kind of ["pointerenter", "focus"]) {
      table.addEventListener(kind, () => choose(id));
    }
    for (const kind of ["pointerleave", "blur"]) {
      table.addEventListener(kind, () => choose(clicked));
    }
    table.addEventListener("click", () => { clicked = id; choose(id); });
    // A table that gets the focus must be seen.
    table.addEventListener("focus", () => {
      frame.scrollTo(0, 0);
      const box = table.getBBox();
      const width = frame.clientWidth / scale, height = frame.clientHeight / scale;
      if (table.matches(":focus-visible") && (box.x < x || box.y < y || box.x + box.width > x + width ||
          box.y + box.height > y + height)) {
        x = box.x - Math.max(0, width - box.width) / 2;
        y = box.y - Math.max(0, height - box.height) / 2;
        show();
      }
    });
  }
})();
