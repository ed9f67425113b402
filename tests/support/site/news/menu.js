// Pages of the site look the same without it.
document.documentElement.dataset.ready = 'yes';
