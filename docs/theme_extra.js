// The theme dresses tables of this class only.
for (const table of document.querySelectorAll(".rst-content table")) table.classList.add("docutils");
