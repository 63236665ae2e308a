"use strict";
(() => {
  const filter = document.getElementById("filter");
  const result = document.getElementById("filter-result");
  const groups = [...document.querySelectorAll(".group")];
  const drawn = [...document.querySelectorAll(".drawn")];
  let items = null;

  // What can be hidden, the innermost first, so that a bridge stays where something behind it does.
  function readItems() {
    items = [...document.querySelectorAll(".item")].reverse().map((element) => {
      const own = [...element.childNodes].filter((node) => !(node.classList && node.classList.contains("node")));
      return { element, text: own.map((node) => node.textContent).join(" ").toLowerCase() };
    });
  }

  function applyFilter() {
    const words = filter.value.toLowerCase().split(/\s+/).filter(Boolean);
    const matches = (text) => words.every((word) => text.includes(word));
    if (items === null) readItems();
    let shown = 0;
    for (const { element, text } of items) {
      const own = matches(text);
      element.hidden = !own && element.querySelector(".node:not([hidden])") === null;
      shown += own ? 1 : 0;
    }
    for (const group of groups) {
      group.hidden = words.length > 0 && group.querySelector(".item:not([hidden])") === null;
      if (words.length > 0 && !group.hidden) group.open = true;
    }
    for (const node of drawn) node.classList.toggle("dim", !matches(node.textContent.toLowerCase()));
    result.value = words.length === 0 ? "" : shown + " of " + items.length;
  }

  function clearFilter() {
    filter.value = "";
    applyFilter();
  }

  function isTyping(target) {
    return target.matches("input, textarea, select, [contenteditable]");
  }

  document.getElementById("filter-box").hidden = false;
  let waiting = 0;
  filter.addEventListener("input", () => {
    clearTimeout(waiting);
    waiting = setTimeout(applyFilter, 80);
  });
  document.addEventListener("keydown", (event) => {
    if (event.key === "/" && !isTyping(event.target) && !event.ctrlKey && !event.metaKey && !event.altKey) {
      event.preventDefault();
      filter.focus();
      filter.select();
    } else if (event.key === "Escape" && (event.target === filter || filter.value !== "")) {
      event.preventDefault();
      clearFilter();
      filter.blur();
    }
  });

  // A number is sorted by the value that is recorded, and so as a number.
  function sortKey(row, column) {
    const cell = row.cells[column];
    const raw = cell.querySelector("small");
    return (raw === null ? cell : raw).textContent.trim();
  }

  const order = new Intl.Collator("en", { numeric: true }).compare;

  function sort(heading) {
    const table = heading.closest("table");
    const ascending = heading.getAttribute("aria-sort") !== "ascending";
    for (const other of table.tHead.rows[0].cells) other.removeAttribute("aria-sort");
    heading.setAttribute("aria-sort", ascending ? "ascending" : "descending");
    const column = heading.cellIndex;
    const rows = [...table.tBodies[0].rows].map((row) => ({ row, key: sortKey(row, column) }));
    rows.sort((one, other) => (ascending ? 1 : -1) * order(one.key, other.key));
    table.tBodies[0].append(...rows.map(({ row }) => row));
  }

  for (const heading of document.querySelectorAll(".sortable thead th")) {
    const button = document.createElement("button");
    button.type = "button";
    button.append(...heading.childNodes);
    button.addEventListener("click", () => sort(heading));
    heading.append(button);
  }

  function copyByCommand(text) {
    const field = document.createElement("textarea");
    field.value = text;
    document.body.append(field);
    field.select();
    const done = document.execCommand("copy");
    field.remove();
    return done;
  }

  async function copy(text) {
    try {
      await navigator.clipboard.writeText(text);
      return true;
    } catch (error) {
      return copyByCommand(text);
    }
  }

  // A part gets its button when its values are opened.
  document.addEventListener("toggle", (event) => {
    const values = event.target.matches("details") ? event.target.querySelector(":scope > .values") : null;
    if (values === null || !event.target.open || event.target.querySelector(":scope > .copy") !== null) return;
    const button = document.createElement("button");
    button.type = "button";
    button.className = "copy";
    button.textContent = "Copy the address";
    button.addEventListener("click", async () => {
      const done = await copy(event.target.closest(".part").dataset.place);
      button.textContent = done ? "Copied" : "Not copied: the browser refuses";
    });
    values.before(button);
  }, true);

  // Browsers that print only what is open.
  let closed = [];
  addEventListener("beforeprint", () => {
    closed = [...document.querySelectorAll("details:not([open])")];
    for (const each of closed) each.open = true;
  });
  addEventListener("afterprint", () => {
    for (const each of closed) each.open = false;
    closed = [];
  });
})();
