// Filters the attributes. Everything is there, and readable, without it.
"use strict";
(() => {
  const form = document.getElementById("filter");
  if (!form) return;
  const query = document.getElementById("query");
  const found = document.getElementById("found");
  const marks = [...form.querySelectorAll("[data-mark]")];
  let groups = null;

  // Made when it is first needed: a page that nobody searches costs nothing.
  const index = () => [...document.querySelectorAll(".group")].map((group) => ({
    element: group,
    is_shown: true,
    blocks: [...group.querySelectorAll(".block")].map((block) => ({
      element: block,
      is_shown: true,
      items: [...block.children].map((item) => ({
        element: item,
        is_shown: true,
        text: item.textContent.toLowerCase(),
        marks: new Set(item.classList),
      })),
    })),
  }));

  // Only what changes is touched: the browser's part costs more than the search.
  const show = (part, is_shown) => {
    if (part.is_shown !== is_shown) part.element.hidden = !is_shown;
    part.is_shown = is_shown;
    return is_shown;
  };

  const filter = () => {
    groups ??= index();
    const words = query.value.toLowerCase().split(/\s+/).filter(Boolean);
    const wanted = marks.filter((mark) => mark.checked).map((mark) => mark.dataset.mark);
    const fits = (item) => words.every((word) => item.text.includes(word)) &&
      wanted.every((mark) => item.marks.has(mark));
    let count = 0;
    for (const group of groups) {
      let in_group = 0;
      for (const block of group.blocks) {
        let in_block = 0;
        for (const item of block.items) in_block += show(item, fits(item)) ? 1 : 0;
        show(block, in_block > 0);
        in_group += in_block;
      }
      show(group, in_group > 0);
      if (in_group > 0 && words.length > 0) group.element.open = true;
      count += in_group;
    }
    found.value = count === 0 ? "none found" : `${count} shown`;
  };

  form.addEventListener("submit", (event) => event.preventDefault());
  form.addEventListener("input", filter);
  query.addEventListener("keydown", (event) => {
    if (event.key !== "Escape" || query.value === "") return;
    event.preventDefault();
    query.value = "";
    filter();
  });
  form.hidden = false;
})();
